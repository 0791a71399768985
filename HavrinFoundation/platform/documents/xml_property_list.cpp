// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/xml_property_list.h>

#include <HavrinFoundation/platform/base/real_text.h>

#include <expat.h>

#include <array>
#include <charconv>
#include <chrono>
#include <climits>
#include <cmath>
#include <exception>
#include <new>
#include <optional>

namespace havrin {
inline namespace platform {
namespace {

bool isBlank(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::string_view trimmed(std::string_view text) noexcept {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// An optional sign, then decimal digits, or "0x" and hexadecimal digits.
std::optional<PropertyList> integerOf(std::string_view text) {
  text = trimmed(text);
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) text.remove_prefix(2);
  std::uint64_t magnitude = 0;
  const char* const end = text.data() + text.size();
  const auto [last, failed] = std::from_chars(text.data(), end, magnitude, isHexadecimal ? 16 : 10);
  if (failed != std::errc() || last != end) return std::nullopt;
  if (!isNegative) return PropertyList(magnitude);
  if (magnitude > std::uint64_t{1} << 63) return std::nullopt;
  return PropertyList(static_cast<std::int64_t>(0 - magnitude));
}

// A decimal number in the syntax of strtod, including "inf", "infinity" and "nan" in either case.
std::optional<PropertyList> realOf(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto [last, failed] = detail::realFromChars(text.data(), end, value);
  if (failed != std::errc() || last != end) return std::nullopt;
  return PropertyList(value);
}

// "2024-10-01T12:34:56Z" and nothing else.
std::optional<PropertyList> dateOf(std::string_view text) {
  text = trimmed(text);
  constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
  if (text.size() != kForm.size()) return std::nullopt;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (kForm[i] == '0' ? text[i] < '0' || text[i] > '9' : text[i] != kForm[i]) return std::nullopt;
  }
  const auto number = [text](std::size_t at, std::size_t digits) {
    int value = 0;
    for (const char c : text.substr(at, digits)) value = value * 10 + (c - '0');
    return value;
  };
  using namespace std::chrono;
  const year_month_day day(year(number(0, 4)), month(static_cast<unsigned>(number(5, 2))),
                           std::chrono::day(static_cast<unsigned>(number(8, 2))));
  const int hour = number(11, 2);
  const int minute = number(14, 2);
  const int second = number(17, 2);
  if (!day.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return PropertyList(Date(sys_days(day) + hours(hour) + minutes(minute) + seconds(second)));
}

int base64Value(char c) noexcept {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  return c == '+' ? 62 : c == '/' ? 63 : -1;
}

// Base64 of RFC 4648, section 4, with padding required and white space allowed anywhere.
std::optional<PropertyList> dataOf(std::string_view text) {
  PropertyList::Data data;
  data.reserve(text.size() / 4 * 3);
  std::uint32_t group = 0;
  int characters = 0;
  int fillers = 0;
  for (const char c : text) {
    if (isBlank(c)) continue;
    const int value = base64Value(c);
    if (c == '=' && characters % 4 >= 2) {
      ++fillers;
    } else if (value < 0 || fillers > 0) {
      return std::nullopt;
    }
    group = group << 6 | static_cast<std::uint32_t>(value < 0 ? 0 : value);
    if (++characters % 4 != 0) continue;
    for (int shift = 16; shift >= 8 * fillers; shift -= 8) data.push_back(static_cast<std::byte>(group >> shift));
  }
  if (characters % 4 != 0) return std::nullopt;
  return PropertyList(std::move(data));
}

// Builds the tree from the events of the parser.
class XmlReader {
 public:
  XmlReader() : parser_(XML_ParserCreate(nullptr)) {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(
        parser_, [](void* self, const char* name, const char**) { of(self).guarded([&](auto& r) { r.begin(name); }); },
        [](void* self, const char* name) { of(self).guarded([&](auto& r) { r.end(name); }); });
    XML_SetCharacterDataHandler(parser_, [](void* self, const char* text, int length) {
      of(self).guarded([&](auto& r) { r.addText({text, static_cast<std::size_t>(length)}); });
    });
    // Entity declarations are refused: nested entities expand a small document without bound.
    XML_SetEntityDeclHandler(parser_,
                             [](void* self, const char*, int, const char*, int, const char*, const char*, const char*,
                                const char*) { of(self).fail("entity declarations are not allowed"); });
  }
  XmlReader(const XmlReader&) = delete;
  ~XmlReader() { XML_ParserFree(parser_); }

  Decoded<PropertyList> read(std::span<const std::byte> bytes) {
    if (bytes.size() > INT_MAX) return errorHere("the XML is larger than 2 GiB");
    const auto status =
        XML_Parse(parser_, reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()), XML_TRUE);
    if (thrown_) std::rethrow_exception(thrown_);
    if (error_) return *error_;
    if (status != XML_STATUS_OK) {
      if (XML_GetErrorCode(parser_) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
      if (XML_GetErrorCode(parser_) == XML_ERROR_NO_ELEMENTS) return errorHere(whatIsMissing(bytes));
      return errorHere(XML_ErrorString(XML_GetErrorCode(parser_)));
    }
    if (!root_) return errorHere("no value");
    return *std::move(root_);
  }

 private:
  // The elements of property lists.
  enum class Element { list, dictionary, array, key, yes, no, text, data, integer, real, date };

  // A dictionary or an array that is still open.
  struct Open {
    Element element;
    std::optional<std::string> key;  // of the next value
    PropertyList::Array elements;
    std::vector<PropertyList::Dictionary::Entry> entries;
  };

  static XmlReader& of(void* self) { return *static_cast<XmlReader*>(self); }

  // Exceptions must not unwind through the parser, which is C: they are kept and rethrown after it has stopped.
  template <class F>
  void guarded(F&& handler) {
    if (error_ || thrown_) return;
    try {
      handler(*this);
    } catch (...) {
      thrown_ = std::current_exception();
      XML_StopParser(parser_, XML_FALSE);
    }
  }

  [[nodiscard]] DecodingError errorHere(std::string_view reason) const {
    return DecodingError::dataCorrupted("line " + std::to_string(XML_GetCurrentLineNumber(parser_)) + ": " +
                                        std::string(reason));
  }

  // The parser reports truncated data as "no elements", even after the start of one.
  [[nodiscard]] std::string_view whatIsMissing(std::span<const std::byte> bytes) const noexcept {
    if (bytes.empty()) return "the data is empty";
    return isInsideList_ || scalar_ || !open_.empty() ? "an element is not closed" : "no element found";
  }

  void fail(std::string_view reason) {
    error_ = errorHere(reason);
    XML_StopParser(parser_, XML_FALSE);
  }

  static std::optional<Element> elementOf(std::string_view name) noexcept {
    constexpr std::array<std::pair<std::string_view, Element>, 11> kElements{{{"plist", Element::list},
                                                                              {"dict", Element::dictionary},
                                                                              {"array", Element::array},
                                                                              {"key", Element::key},
                                                                              {"true", Element::yes},
                                                                              {"false", Element::no},
                                                                              {"string", Element::text},
                                                                              {"data", Element::data},
                                                                              {"integer", Element::integer},
                                                                              {"real", Element::real},
                                                                              {"date", Element::date}}};
    for (const auto& [known, element] : kElements) {
      if (known == name) return element;
    }
    return std::nullopt;
  }

  void begin(std::string_view name) {
    const auto element = elementOf(name);
    if (!element) return fail("unknown property list element");
    if (scalar_) return fail("an element inside a scalar element");
    if (*element == Element::list) {
      if (isInsideList_ || root_ || !open_.empty()) return fail("a <plist> inside another element");
      isInsideList_ = true;
      return;
    }
    const bool isInDictionary = !open_.empty() && open_.back().element == Element::dictionary;
    if (*element == Element::key) {
      if (!isInDictionary) return fail("a key outside a dictionary");
      if (open_.back().key) return fail("a key without a value");
    } else {
      if (isInDictionary && !open_.back().key) return fail("a value without a key");
      if (open_.empty() && root_) return fail("more than one value");
    }
    if (*element == Element::dictionary || *element == Element::array) {
      if (open_.size() == PropertyList::kDeepestNesting) return fail("nested deeper than 512 levels");
      open_.push_back({*element, std::nullopt, {}, {}});
    } else {
      scalar_ = element;
      text_.clear();
    }
  }

  void addText(std::string_view text) {
    if (scalar_ && *scalar_ != Element::yes && *scalar_ != Element::no) {
      text_ += text;
    } else if (!trimmed(text).empty()) {
      fail("text between elements");
    }
  }

  // The parser guarantees that start and end tags match.
  void end(std::string_view name) {
    if (scalar_) {
      const Element element = *scalar_;
      scalar_.reset();
      return element == Element::key ? void(open_.back().key = text_) : endScalar(element);
    }
    if (name == "plist") return;
    Open closed = std::move(open_.back());
    open_.pop_back();
    if (closed.element == Element::array) return addValue(PropertyList(std::move(closed.elements)));
    if (closed.key) return fail("a key without a value");
    if (closed.entries.size() == 1 && closed.entries[0].key == "CF$UID") {
      if (const auto number = closed.entries[0].value.unsignedInteger()) {
        return addValue(PropertyList(PropertyList::UID{*number}));
      }
    }
    addValue(PropertyList(PropertyList::Dictionary(std::move(closed.entries))));
  }

  void endScalar(Element element) {
    switch (element) {
      case Element::yes:
        return addValue(PropertyList(true));
      case Element::no:
        return addValue(PropertyList(false));
      case Element::text:
        return addValue(PropertyList(std::move(text_)));
      case Element::data:
        return addValue(dataOf(text_), "<data> is not base64");
      case Element::integer:
        return addValue(integerOf(text_), "<integer> is not a 64-bit integer");
      case Element::real:
        return addValue(realOf(text_), "<real> is not a number");
      default:
        return addValue(dateOf(text_), "<date> is not a date in the form 2024-10-01T12:34:56Z");
    }
  }

  void addValue(std::optional<PropertyList> value, std::string_view otherwise) {
    value ? addValue(*std::move(value)) : fail(otherwise);
  }

  void addValue(PropertyList value) {
    if (open_.empty()) {
      root_ = std::move(value);
    } else if (open_.back().element == Element::array) {
      open_.back().elements.push_back(std::move(value));
    } else {
      open_.back().entries.push_back({*std::move(open_.back().key), std::move(value)});
      open_.back().key.reset();
    }
  }

  XML_Parser parser_;
  bool isInsideList_ = false;
  std::vector<Open> open_;
  std::optional<Element> scalar_;  // the scalar element whose text is being collected
  std::string text_;
  std::optional<PropertyList> root_;
  std::optional<DecodingError> error_;
  std::exception_ptr thrown_;
};

}  // namespace

Decoded<PropertyList> readXmlPropertyList(std::span<const std::byte> bytes) { return XmlReader().read(bytes); }

}  // namespace platform
}  // namespace havrin
