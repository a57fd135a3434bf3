// The streams that every program is started with, and the terminal behind them.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace corvana {

/// Takes the place of closed standard streams: nothing can be read there, and writing fails.
/// Otherwise the next file that is opened would get the number of one, and the log would end up
/// in somebody's samples.
void reserveStandardStreams();

bool isTerminal(std::FILE* stream);

/// Columns of the terminal; 80 where it does not tell.
std::size_t terminalWidth(std::FILE* stream);

/// The beginning of a readable line (readableLine) that takes up to `columns` of a terminal: wide
/// characters take two, combining ones none.
std::string_view firstColumns(std::string_view line, std::size_t columns);

}  // namespace corvana
