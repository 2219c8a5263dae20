// SPDX-License-Identifier: BSD-3-Clause
// Design files written by a test and read into a design.
#pragma once

#include <string>

#include "db/design.h"
#include "db/orientMapGuard.h"
#include "support/guards.h"

namespace test {

/// Name of a row of a table of cases, for its test.
constexpr auto nameOfRow = [](const auto& row) { return std::string(row.param.name); };

/// A design with its files; every read() adds to the design.
class Reading {
public:
    Reading()
    {
        design.lut.cellIndex["C0"] = 0;
        design.lut.cellIndex["C1"] = 1;
    }

    /// Reads a placement file; a failure if that ends the run.
    ///
    /// @return the report
    std::string place(const std::string& text) { return read(design.placeParser, ".place", text); }

    /// As place(), a pin file.
    std::string pins(const std::string& text) { return read(design.pinParser, ".pins", text); }

    /// As place(), a netlist file.
    std::string netlist(const std::string& text) { return read(design.netParser, ".netlist", text); }

    /// Reads a placement file that must end the run.
    ///
    /// @return "LINE: what is wrong" if the report is one error line about the file, else the report
    std::string placeFault(const std::string& text) { return fault(design.placeParser, ".place", text); }

    /// As placeFault(), a pin file.
    std::string pinFault(const std::string& text) { return fault(design.pinParser, ".pins", text); }

    /// As placeFault(), a netlist file.
    std::string netFault(const std::string& text) { return fault(design.netParser, ".netlist", text); }

private:
    OrientMapGuard m_orientations;

public:
    const TempDir dir;
    const std::string base = dir.path("d"); ///< of the files, without extension
    Design design;

private:
    template <class Parser>
    std::string read(Parser& parser, const std::string& extension, const std::string& text)
    {
        dir.write("d" + extension, text);
        return reportOf([&] { parser.run(base); });
    }

    template <class Parser>
    std::string fault(Parser& parser, const std::string& extension, const std::string& text)
    {
        dir.write("d" + extension, text);
        const std::string report = reportOfEndedRun([&] { parser.run(base); });
        const std::string start = "ERROR| " + base + extension + ":";
        const bool isOneLine = report.find('\n') == report.size() - 1;
        return isOneLine && report.rfind(start, 0) == 0
                   ? report.substr(start.size(), report.size() - start.size() - 1)
                   : report;
    }
};

} // namespace test
