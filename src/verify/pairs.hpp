// Finds out which of two lists' records are the same ones, so that a record that is left out or
// added counts as one difference and not as one for each record behind it.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace corvana {

template <typename Expected, typename Found>
class Pairs {
 public:
  Pairs(const std::vector<Expected>& expected, const std::vector<Found>& found)
      : expected_(expected), found_(found), partners_(expected.size()), taken_(found.size()) {}

  /// Pairs those that have no partner yet and agree in what the two keys give, in their order.
  template <typename ExpectedKey, typename FoundKey>
  void pairBy(const ExpectedKey& expectedKey, const FoundKey& foundKey) {
    std::multimap<decltype(foundKey(found_.front())), std::size_t> open;
    for (std::size_t i = 0; i < expected_.size(); ++i)
      if (!partners_[i]) open.emplace(expectedKey(expected_[i]), i);
    for (std::size_t i = 0; i < found_.size() && !open.empty(); ++i) {
      if (taken_[i]) continue;
      const auto partner = open.lower_bound(foundKey(found_[i]));
      if (partner == open.end() || partner->first != foundKey(found_[i])) continue;
      partners_[partner->second] = i;
      taken_[i] = true;
      open.erase(partner);
    }
  }

  /// Which of the found ones the expected one is.
  std::optional<std::size_t> partnerOf(std::size_t expected) const { return partners_[expected]; }
  /// Whether the found one is an expected one.
  bool isTaken(std::size_t found) const { return taken_[found]; }

 private:
  const std::vector<Expected>& expected_;
  const std::vector<Found>& found_;
  std::vector<std::optional<std::size_t>> partners_;
  std::vector<bool> taken_;
};

}  // namespace corvana
