#include <HavrinFoundation/platform/documents/json_structure.h>

#include <simdjson.h>

#include <algorithm>
#include <new>

namespace havrin::inline platform {

// The library's own second pass and its on-demand reader both give up on a number that they cannot hold, cost two to
// three times what building our tree costs, or want the text copied with room behind it. Its first pass is what makes
// it fast; it is reached through the virtual class that all its processor-specific kernels implement.
struct JsonStructure::State {
  std::unique_ptr<simdjson::internal::dom_parser_implementation> kernel;
  std::size_t capacity = 0;
};

JsonStructure::JsonStructure() : state_(std::make_unique<State>()) {}
JsonStructure::JsonStructure(JsonStructure&&) noexcept = default;
JsonStructure::~JsonStructure() = default;

Decoded<std::span<std::uint32_t>> JsonStructure::find(std::string_view text) {
  if (text.empty()) return DecodingError::dataCorrupted("the document is empty");
  if (text.size() > state_->capacity || state_->kernel == nullptr) {
    constexpr std::size_t kSmallest = 4096;
    constexpr std::size_t kNoNesting = 1;  // its second pass is not used
    state_->kernel.reset();
    state_->capacity = std::max(text.size(), kSmallest);
    if (simdjson::get_active_implementation()->create_dom_parser_implementation(state_->capacity, kNoNesting,
                                                                                state_->kernel) != simdjson::SUCCESS) {
      throw std::bad_alloc();
    }
  }
  auto& kernel = *state_->kernel;
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  switch (kernel.stage1(bytes, text.size(), simdjson::stage1_mode::regular)) {
    case simdjson::SUCCESS:
      return std::span<std::uint32_t>(kernel.structural_indexes.get(), kernel.n_structural_indexes + 1);
    case simdjson::EMPTY:
      return DecodingError::dataCorrupted("the document is empty");
    case simdjson::UTF8_ERROR:
      return DecodingError::dataCorrupted("the document is not UTF-8");
    case simdjson::UNCLOSED_STRING:
      return DecodingError::dataCorrupted("the document ends inside a string");
    case simdjson::UNESCAPED_CHARS:
      return DecodingError::dataCorrupted("the document has a control character in a string");
    default:
      return DecodingError::dataCorrupted("the document is not JSON");
  }
}

}  // namespace havrin::inline platform
