// SPDX-License-Identifier: BSD-3-Clause
#include "parser/netParser.h"

#include <map>

#include "db/design.h"
#include "qlib/report.h"
#include "qlib/wordReader.h"

namespace {

/// Index of a name, -1 if it is not in the map.
int32_t indexOf(const std::map<std::string, int32_t>& index, const std::string& name)
{
    const auto at = index.find(name);
    return at != index.end() ? at->second : -1;
}

} // namespace

void NetParser::run(std::string base)
{
    vireloce::WordReader in;
    if (!in.open(base + ".netlist")) {
        vireloce::endRun("ERROR| cannot open file: " + in.path());
    }
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
        Net net;
        for (int32_t k = 0; k < degree; ++k) {
            addMember(net, in.readWord());
        }
        net.id = static_cast<int32_t>(design->nets.size());
        design->nets.push_back(new Net(std::move(net)));
    }
}

void NetParser::addMember(Net& net, std::string_view name)
{
    const std::string key(name);
    const int32_t comp = indexOf(design->compIndex, key);
    const int32_t pin = comp < 0 ? indexOf(design->pinIndex, key) : -1;
    if (comp >= 0) {
        net.components.push_back(design->components[static_cast<size_t>(comp)]);
    } else if (pin >= 0) {
        net.pins.push_back(design->pins[static_cast<size_t>(pin)]);
    } else {
        // Required: although the line says WARNING, the run ends.
        vireloce::endRun("WARNING| invalid compID and pinID, pname = " + key);
    }
}
