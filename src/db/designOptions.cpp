// SPDX-License-Identifier: BSD-3-Clause
// The options: from a command line, or as values, into the design and the parameters.
#include "app/placeOptions.h"
#include "db/design.h"

bool Design::parseParameters(int argc, char** argv)
{
    vireloce::PlaceOptions options{placePath, cellPath, algo, vireloce::parametersNow()};
    const bool isGood = vireloce::readOptions(argc, argv, options);
    setOptions(options);
    return isGood;
}

void Design::setOptions(const vireloce::PlaceOptions& options)
{
    placePath = options.placePath;
    // No "/" gives npos, and npos + 1 is 0: the whole path.
    designName = placePath.substr(placePath.rfind('/') + 1);
    cellPath = options.cellPath;
    algo = options.algo;
    vireloce::setParameters(options.parameters);
}

void Design::cleanPlacePath()
{
    placePath = vireloce::withoutDot(placePath);
}
