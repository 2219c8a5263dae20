// SPDX-License-Identifier: BSD-3-Clause
// Standard output that is told about when it cannot be written.
#pragma once

namespace kit {

/// What a program does before anything else. Writing beyond a limit or into a pipe that nobody reads becomes
/// an error instead of the program's end, and no file that is opened is taken for a standard stream that is
/// closed.
void prepareStreams();

/// What a program does last: brings standard output to where it goes. If it does not get there, a line on
/// standard error says why; a reader who has gone is no fault.
///
/// @param status  exit status so far
/// @return exit status: 2 if the output is not all there
int finishStreams(int status);

} // namespace kit
