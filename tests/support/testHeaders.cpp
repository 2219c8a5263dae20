// SPDX-License-Identifier: BSD-3-Clause
// Stands for the headers that all tests share, so that they are parsed once for all programs.
