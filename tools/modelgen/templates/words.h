#pragma once

#include <string_view>

// The vocabularies of the REST model. A list that several properties share bears the name of the first one.
namespace zuva::server::words {
/*% for vocabulary in vocabularies %*/

inline constexpr std::string_view ${vocabulary.name}[] = {
/*% for word in vocabulary.words %*/
    "${word}",
/*% endfor %*/
};
/*% endfor %*/

}  // namespace zuva::server::words
