#include "Workbench/NearestWord.h"

#include <algorithm>
#include <cstddef>

namespace Workbench {

namespace {

char lowered(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

std::size_t distance(const std::string &from, const std::string &to) {
  const std::size_t width = to.size() + 1;
  std::vector<std::size_t> beforeLast(width);
  std::vector<std::size_t> last(width);
  std::vector<std::size_t> current(width);
  for (std::size_t column = 0; column < width; ++column) {
    last[column] = column;
  }
  for (std::size_t row = 1; row <= from.size(); ++row) {
    current[0] = row;
    for (std::size_t column = 1; column < width; ++column) {
      const bool equal = lowered(from[row - 1]) == lowered(to[column - 1]);
      current[column] =
          std::min({last[column] + 1, current[column - 1] + 1, last[column - 1] + (equal ? 0U : 1U)});
      if (row > 1 && column > 1 && lowered(from[row - 1]) == lowered(to[column - 2]) &&
          lowered(from[row - 2]) == lowered(to[column - 1])) {
        current[column] = std::min(current[column], beforeLast[column - 2] + 1);
      }
    }
    beforeLast.swap(last);
    last.swap(current);
  }
  return last[to.size()];
}

bool isEqual(char left, char right) {
  return lowered(left) == lowered(right);
}

// Somebody leaves out the entity of "Entity.Attribute", or writes "min" for "minimum".
bool isShortFor(const std::string &word, const std::string &candidate) {
  constexpr std::size_t kShortest = 3;
  const std::size_t size = word.size();
  if (size == 0 || candidate.size() <= size) {
    return false;
  }
  const std::size_t rest = candidate.size() - size;
  const bool isEnd =
      candidate[rest - 1] == '.' &&
      std::equal(word.begin(), word.end(), candidate.begin() + static_cast<std::ptrdiff_t>(rest), isEqual);
  return isEnd || (size >= kShortest && std::equal(word.begin(), word.end(), candidate.begin(), isEqual));
}

} // namespace

std::string nearestWord(const std::string &word, const std::vector<std::string> &candidates) {
  constexpr std::size_t kLongestWord = 200;
  if (word.size() > kLongestWord) {
    return "";
  }
  std::string nearest;
  std::size_t best = std::max<std::size_t>(1, word.size() / 3) + 1;
  for (const std::string &candidate : candidates) {
    const std::size_t changes = candidate.size() > kLongestWord ? best : distance(word, candidate);
    if (changes < best) {
      best = changes;
      nearest = candidate;
    }
  }
  if (nearest.empty()) {
    const auto found =
        std::find_if(candidates.begin(), candidates.end(),
                     [&word](const std::string &candidate) { return isShortFor(word, candidate); });
    nearest = found == candidates.end() ? "" : *found;
  }
  return nearest;
}

std::string didYouMean(const std::string &word, const std::vector<std::string> &candidates) {
  const std::string nearest = nearestWord(word, candidates);
  return nearest.empty() ? "" : ", did you mean \"" + nearest + "\"?";
}

} // namespace Workbench
