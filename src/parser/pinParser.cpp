// SPDX-License-Identifier: BSD-3-Clause
#include "parser/pinParser.h"

#include "db/design.h"
#include "qlib/report.h"
#include "qlib/wordReader.h"

void PinParser::run(std::string base)
{
    vireloce::WordReader in;
    if (!in.open(base + ".pins")) {
        vireloce::endRun("ERROR| cannot open file: " + in.path());
    }
    int32_t count = 0;
    in.readInt(count);
    for (int32_t i = 0; i < count; ++i) {
        Pin pin;
        pin.name = in.readWord();
        in.readInt(pin.x);
        in.readInt(pin.y);
        if (in.failed()) {
            vireloce::endRunAt(in.path(), in.line(),
                               "pin " + std::to_string(i + 1) + " of " + std::to_string(count) +
                                   " is not a name and two 32-bit integers");
        }
        design->pinIndex[pin.name] = static_cast<int32_t>(design->pins.size());
        design->pins.push_back(new Pin(std::move(pin)));
    }
}
