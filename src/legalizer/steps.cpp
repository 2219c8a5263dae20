// SPDX-License-Identifier: BSD-3-Clause
// The two steps of a segment, and the greedy colourings.
#include <cstdlib>

#include "db/design.h"
#include "legalizer/legalizer.h"
#include "legalizer/segLegalizer.h"

int SegLegalizer::solveStep1()
{
    if (segment->components.empty()) {
        return 0;
    }
    switch (design().algo) {
    case ALGO_JOINT:
        solveTPLOSR();
        break;
    case ALGO_SPD:
        solveTPL();
        break;
    case ALGO_GREEDY:
        solveGreedy();
        break;
    case ALGO_LDP:
        solveLdp(1);
        break;
    case ALGO_LDP_FAST:
        solveLdpFast(1);
        break;
    default:
        break;
    }
    postGreedyColorAssignment();
    return legalizer->getColoredSiteNum(segment) - segment->numSites;
}

int SegLegalizer::solveStep2()
{
    if (segment->components.empty()) {
        return 1;
    }
    switch (design().algo) {
    case ALGO_JOINT:
        solveTPLOSR();
        break;
    case ALGO_SPD:
        solveOSR();
        break;
    case ALGO_LDP:
        solveLdp(2);
        break;
    case ALGO_LDP_FAST:
        solveLdpFast(2);
        break;
    default:
        break;
    }
    return 1;
}

void SegLegalizer::solveGreedy()
{
    Component* left = nullptr;
    for (Component* comp : segment->components) {
        if (left == nullptr) {
            const int32_t colours = numColours(*comp);
            comp->solution = colours > 0 ? std::rand() % colours : 0;
        } else {
            const int32_t leftEnd = left->siteX + cellOf(*left).siteWidth;
            const auto [solution, dist] = closestSolution(*left, *comp);
            comp->solution = solution;
            if (comp->siteX - leftEnd < dist) {
                placeAt(*comp, leftEnd + dist);
            }
        }
        left = comp;
    }
}

void SegLegalizer::postGreedyColorAssignment()
{
    const Component* left = nullptr;
    for (Component* comp : segment->components) {
        if (left != nullptr && comp->solution < 0) {
            comp->solution = closestSolution(*left, *comp).first;
        }
        left = comp;
    }
}
