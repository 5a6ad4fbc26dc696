#include "zentavo/json/unfilled_text.h"

#include <version>

namespace zentavo::json_internal {

#if defined(__cpp_lib_string_resize_and_overwrite)

void ResizeUnfilled(String& text, std::size_t size) {
  text.resize_and_overwrite(size, [size](char16_t*, std::size_t) { return size; });
}

#elif defined(__GLIBCXX__)

namespace {

// C++20 has no name for this step. An explicit instantiation may name any member, a private one
// too; it defines the function that hands it out.
using SetLength = void (String::*)(String::size_type);
SetLength SetLengthOfStrings();

template <SetLength kMember>
struct Member {
  friend SetLength SetLengthOfStrings() { return kMember; }
};
template struct Member<&String::_M_set_length>;

}  // namespace

void ResizeUnfilled(String& text, std::size_t size) {
  text.reserve(size);
  (text.*SetLengthOfStrings())(size);
}

#else

void ResizeUnfilled(String& text, std::size_t size) {
  text.resize(size);
}

#endif

}  // namespace zentavo::json_internal
