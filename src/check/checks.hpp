// The parts of a check, each of which adds what it finds.
#pragma once

#include "check/report.hpp"

namespace corvana {

/// The header of the file. Whether there is more to look at.
bool checkContainer(Report& report);

/// The chunks: IDs, sizes, padding, what follows them.
void checkChunks(Report& report);

/// The chunk of the format, and whether there are samples.
void checkFormat(Report& report);

/// How many samples there are.
void checkSampleData(Report& report);

/// Markers and cue points.
void checkMarkers(Report& report);

/// Keys, tunings and ranges.
void checkKeys(Report& report);

/// Loops, their ends and their seams.
void checkLoops(Report& report);

}  // namespace corvana
