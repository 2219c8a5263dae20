// SPDX-License-Identifier: BSD-3-Clause
#include "parser/netParser.h"

#include "db/design.h"
#include "parser/memberFinder.h"
#include "qlib/report.h"
#include "qlib/wordReader.h"

void NetParser::run(std::string base)
{
    vireloce::WordReader in;
    if (!in.open(base + ".netlist")) {
        vireloce::endRun("ERROR| cannot open file: " + in.path());
    }
    reserveNets(readNets(in));
}

std::vector<uint32_t> NetParser::readNets(vireloce::WordReader& in)
{
    vireloce::MemberFinder members(*design);
    int32_t count = 0;
    in.readInt(count);
    // Once a read has failed, every later degree is 0, and the nets that are left are none.
    for (int32_t i = 0; i < count && !in.failed(); ++i) {
        int32_t degree = 0;
        in.readInt(degree);
        if (degree < 2) {
            if (degree == 1) {
                in.readWord();
            }
            continue;
        }
        for (int32_t k = 1; k <= degree; ++k) {
            members.add(in.readWord(), k == degree);
        }
    }
    members.flush();
    return members.uses();
}

void NetParser::reserveNets(const std::vector<uint32_t>& uses)
{
    for (size_t i = 0; i < uses.size(); ++i) {
        std::vector<Net*>& nets = design->components[i]->nets;
        nets.reserve(nets.size() + uses[i]);
    }
}
