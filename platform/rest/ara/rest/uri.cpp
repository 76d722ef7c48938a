#include "ara/rest/uri.h"

#include <boost/url/parse.hpp>
#include <boost/url/pct_string_view.hpp>

#include "ara/rest/exceptions.h"

namespace ara::rest {

std::string Uri::ToString(bool encoded) const {
  if (encoded) return text_;
  return boost::urls::pct_string_view{text_}.decode();
}

Uri Uri::Builder::ToUri() const {
  if (!allocator_) throw LogicException{"Adapter has no allocator"};
  if (!boost::urls::parse_uri_reference(text_)) throw InvalidArgumentException{"'" + text_ + "' is no URI"};
  return Uri{text_};
}

}  // namespace ara::rest
