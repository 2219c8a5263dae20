// SPDX-License-Identifier: BSD-3-Clause
#include "app/driver.h"

int main(int argc, char** argv)
{
    return vireloce::runPlacer(argc, argv);
}
