// SPDX-License-Identifier: BSD-3-Clause
#include "kit/engines/place/firstKinds.h"

#include "kit/base/fault.h"
#include "kit/base/files/outputFile.h"
#include "kit/base/finding.h"
#include "kit/design/designFiles.h"
#include "kit/design/fixedCells.h"
#include "kit/formats/placer/reader.h"
#include "kit/formats/placer/writer.h"

namespace kit::place {

std::unique_ptr<FirstKinds> FirstKinds::of(const Options& options)
{
    Findings findings;
    placer::Design design;
    placer::readLibrary(options.base + ".cells", options.cellPath, design, findings);
    placer::readPlacement(options.base + ".place", design, findings);
    if (hasErrors(findings)) {
        return nullptr;
    }
    for (const placer::Cell& cell : design.cells) {
        if (!cell.solutions.empty() && !design::isPaired(cell)) {
            throw Fault(cell.path + " has no solutions for every second row: color with --rows-meet");
        }
    }
    design::addFixed(design::readFixed(options.base + design::FIXED, findings), options.cellPath, design,
                     findings);
    std::unique_ptr<FirstKinds> library(new FirstKinds(design::RowKinds(design.rows)));
    for (placer::Cell& cell : design.cells) {
        if (design::isPaired(cell)) {
            cell.solutions.resize(cell.solutions.size() / 2);
            library->m_counts.emplace(cell.name, static_cast<int32_t>(cell.solutions.size()));
        }
        OutputFile file(library->path() + "/" + cell.name + ".color");
        placer::writeColorFile(file, cell);
        file.commit();
    }
    return library;
}

int32_t FirstKinds::solutionAt(const std::string& cell, int32_t solution, int32_t y) const
{
    const auto count = m_counts.find(cell);
    const bool isOther = solution >= 0 && count != m_counts.end() && m_rows.isOther(y);
    return isOther ? solution + count->second : solution;
}

void FirstKinds::settle(placer::ColorRecord& record, int32_t y) const
{
    const int32_t solution = solutionAt(record.cell, record.solution, y);
    if (solution != record.solution) {
        record.solution = solution;
        design::exchangeMasks(record.masks);
    }
}

} // namespace kit::place
