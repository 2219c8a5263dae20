// SPDX-License-Identifier: BSD-3-Clause
#include <string>
#include <string_view>
#include <unordered_map>

#include "kit/base/finding.h"
#include "kit/engines/lint/checks.h"
#include "kit/formats/placer/design.h"

namespace kit::lint {

namespace {

/// How records of one kind are named.
struct Naming {
    const char* record;
    const char* effect; ///< of a name that comes twice
    Severity severity;
};

template <typename Records>
void checkTwice(const Records& records, const Naming& naming, Reporter reporter)
{
    std::unordered_map<std::string_view, int64_t> lines;
    lines.reserve(records.size());
    for (const auto& record : records) {
        const auto [first, isNew] = lines.try_emplace(record.name, record.line);
        if (!isNew) {
            reporter.add(naming.severity, "duplicate-name", {record.line, 0},
                         std::string("the ") + naming.record + " " + record.name + " is also on line " +
                             std::to_string(first->second) + naming.effect,
                         "rename or remove one of them");
        }
    }
}

void checkPinsAndComponents(const Subject& subject)
{
    const placer::NameIndex pins = placer::indexNames(subject.design.pins);
    Reporter reporter(subject.findings, subject.options.paths.pins());
    for (const placer::Component& comp : subject.design.components) {
        const int32_t pin = pins.empty() ? -1 : placer::findName(pins, comp.name);
        if (pin >= 0) {
            reporter.warning("duplicate-name", {subject.design.pins[static_cast<size_t>(pin)].line, 0},
                             "the pin " + comp.name + " has the name of a component (line " +
                                 std::to_string(comp.line) +
                                 " of the placement), and nets of that name get the component",
                             "rename one of them");
        }
    }
}

} // namespace

void checkNames(const Subject& subject)
{
    const placer::Design& design = subject.design;
    const placer::Paths& paths = subject.options.paths;
    const Reporter place(subject.findings, paths.place());
    const char* const nets = ", and all nets of that name get the later one";
    checkTwice(design.cells, {"cell", ", and the components get the later one", Severity::WARNING},
               Reporter(subject.findings, paths.cells()));
    checkTwice(design.rows, {"row", "", Severity::WARNING}, place);
    checkTwice(design.macros, {"macro", "", Severity::WARNING}, place);
    checkTwice(design.components, {"component", nets, Severity::ERROR}, place);
    checkTwice(design.pins, {"pin", nets, Severity::ERROR}, Reporter(subject.findings, paths.pins()));
    checkPinsAndComponents(subject);
}

} // namespace kit::lint
