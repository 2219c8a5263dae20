// SPDX-License-Identifier: BSD-3-Clause
#include "parser/memberFinder.h"

#include <memory>

#include "db/design.h"
#include "qlib/report.h"

namespace vireloce {

namespace {

constexpr size_t BATCH = 128; ///< names that are looked up at a time

} // namespace

MemberFinder::MemberFinder(Design& design)
    : m_design(design), m_compTable(design.compIndex.size()), m_pinTable(design.pinIndex.size()),
      m_uses(design.components.size())
{
    m_compTable.insertAll(design.compIndex);
    m_pinTable.insertAll(design.pinIndex);
}

void MemberFinder::add(std::string_view name, bool isLast)
{
    m_names.push_back({m_text.size(), name.size(), NameTable::hashOf(name), isLast});
    m_text += name;
    m_compTable.askForSlot(m_names.back().hash);
    if (m_names.size() == BATCH) {
        flush();
    }
}

void MemberFinder::flush()
{
    for (const Name& name : m_names) {
        m_compTable.askForName(name.hash);
    }
    for (const Name& name : m_names) {
        enter(std::string_view(m_text).substr(name.begin, name.length), name.hash);
        if (name.isLast) {
            completeNet();
        }
    }
    m_names.clear();
    m_text.clear();
}

void MemberFinder::enter(std::string_view name, uint64_t hash)
{
    const int32_t comp = m_compTable.find(name, hash);
    if (comp >= 0) {
        m_components.push_back(m_design.components[static_cast<size_t>(comp)]);
        ++m_uses[static_cast<size_t>(comp)];
        return;
    }
    const int32_t pin = m_pinTable.find(name, hash);
    if (pin < 0) {
        // Required: although the line says WARNING, the run ends.
        endRun("WARNING| invalid compID and pinID, pname = " + std::string(name));
    }
    m_pins.push_back(m_design.pins[static_cast<size_t>(pin)]);
}

void MemberFinder::completeNet()
{
    auto net = std::make_unique<Net>();
    net->id = static_cast<int32_t>(m_design.nets.size());
    // Copied, not grown: they take no more memory than they need.
    net->components = m_components;
    net->pins = m_pins;
    m_design.nets.push_back(net.release());
    m_components.clear();
    m_pins.clear();
}

} // namespace vireloce
