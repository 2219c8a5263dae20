// SPDX-License-Identifier: BSD-3-Clause
#include "app/parameters.h"

int32_t SITE_WIDTH = 190;
int32_t SITE_HEIGHT = 1900;
int32_t MINDPLDIST = 185;
float WEIGHT_WRLENG = 1.4F;
int32_t LDP_M = 8;
int32_t LDP_K = 0;
