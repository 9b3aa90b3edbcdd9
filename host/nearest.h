// What a word was probably meant to be.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace aceconv {

/// The one of `names` that takes the fewest letters changed, added, left out or
/// swapped to come to from `word`, if that is no more than a third of its letters;
/// "" otherwise. Of several the first. Case does not count.
std::string nearest(std::string_view word, const std::vector<std::string> &names);

/// "; did you mean X?", or "".
std::string did_you_mean(std::string_view word, const std::vector<std::string> &names);

} // namespace aceconv
