#include "check/check_file.hpp"

#include <algorithm>
#include <utility>

#include "check/checks.hpp"

namespace corvana {

std::vector<Finding> checkFile(ByteView content, const FileDescription& file) {
  Report report{content, file};
  if (checkContainer(report)) {
    checkChunks(report);
    checkFormat(report);
    checkSampleData(report);
    checkMarkers(report);
    checkKeys(report);
    checkLoops(report);
  }
  return std::move(report.findings);
}

bool hasErrors(const std::vector<Finding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.severity == Severity::error; });
}

}  // namespace corvana
