// What the update window says about an answer, without the window.
#pragma once

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

/// `status` is the HTTP status of the answer, 0 without one.
ResultState resultState(const VantorErgebnis& ergebnis, int status);

/// The addresses in `ergebnis` must have no white space around them. Any thread.
ResultTexts resultTexts(const VantorErgebnis& ergebnis, int status,
                        std::u16string_view applicationName, std::u16string_view installedVersion);

}  // namespace corvana
