// The streams that every program is started with, and the terminal behind them.
#pragma once

#include <cstddef>
#include <cstdio>

namespace corvana {

/// Leads closed standard streams nowhere. Otherwise the next file that is opened would get the
/// number of one, and the log would end up in somebody's samples.
void reserveStandardStreams();

bool isTerminal(std::FILE* stream);

/// Columns of the terminal; 80 where it does not tell.
std::size_t terminalWidth(std::FILE* stream);

}  // namespace corvana
