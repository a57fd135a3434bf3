// What the update window says about an answer, without the window.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "update/version_file.hpp"

namespace corvana {

enum class ResultState {
  newVersion,
  upToDate,
  unavailable,  ///< no answer, or none that says anything about the application
};

/// The texts of a result state, in the user's language, UTF-8.
struct ResultTexts {
  std::string headline;
  std::string versionLine;  ///< empty unless there is a new version
  std::string caption;      ///< empty unless there is a new version
  std::string text;         ///< the text area: notes, addresses, explanations
};

// Code units; what is longer ends in an ellipsis there.
inline constexpr std::size_t maxShownNotes = 20000;
inline constexpr std::size_t maxShownVersion = 32;
inline constexpr std::size_t maxShownAddress = 500;

/// The address as the window shows it, UTF-8.
std::string shownAddress(std::u16string_view address);

/// `status` is the HTTP status of the answer, 0 without one.
ResultState resultState(const VantorErgebnis& ergebnis, int status);

/// The addresses in `ergebnis` must have no white space around them. Any thread.
ResultTexts resultTexts(const VantorErgebnis& ergebnis, int status,
                        std::u16string_view applicationName, std::u16string_view installedVersion);

}  // namespace corvana
