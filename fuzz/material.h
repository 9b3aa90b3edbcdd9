// What fuzzing starts from: words of the modules, and inputs made of the example lists.
#pragma once

#include "fuzz/target.h"
#include "stream/source.h"

namespace aceconv::fuzz {

/// The entries of the lists in examples/.
std::vector<Entry> example_entries();

Texts no_words();
Texts json_words();
Texts xml_words();
Texts encoding_words();
Texts flag_words();

Texts json_seeds();
Texts line_seeds();
Texts xml_seeds();
Texts encoding_seeds();
Texts digit_seeds();
Texts entry_seeds();
Texts bag_seeds();
Texts record_seeds();
Texts flag_seeds();
Texts stored_seeds();
Texts library_seeds();

} // namespace aceconv::fuzz
