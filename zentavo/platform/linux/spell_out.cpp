#include "zentavo/platform/spell_out.h"

#include <unicode/unum.h>

#include <memory>
#include <utility>
#include <vector>

namespace zentavo::platform {
namespace {

struct CloseFormatter {
  void operator()(UNumberFormat* formatter) const { unum_close(formatter); }
};
using Formatter = std::unique_ptr<UNumberFormat, CloseFormatter>;

// For a language that it does not have the data answer with the user's own, or with digits.
bool SpeaksLanguage(const UNumberFormat* formatter, std::string_view language) {
  UErrorCode status = U_ZERO_ERROR;
  const char* const found = unum_getLocaleByType(formatter, ULOC_VALID_LOCALE, &status);
  return U_SUCCESS(status) && found != nullptr &&
         std::string_view(found).substr(0, 2) == language.substr(0, 2);
}

void ChooseRuleSet(UNumberFormat* formatter, std::string_view rule_set) {
  if (rule_set.empty()) return;
  const std::u16string name(rule_set.begin(), rule_set.end());
  UErrorCode ignored = U_ZERO_ERROR;  // an unknown rule set leaves the default one in place
  unum_setTextAttribute(formatter, UNUM_DEFAULT_RULESET, name.data(),
                        static_cast<std::int32_t>(name.size()), &ignored);
}

Formatter OpenFormatter(const std::string& language, std::string_view rule_set) {
  UErrorCode status = U_ZERO_ERROR;
  Formatter formatter(unum_open(UNUM_SPELLOUT, nullptr, 0, language.c_str(), nullptr, &status));
  if (U_FAILURE(status) || !SpeaksLanguage(formatter.get(), language)) return nullptr;
  ChooseRuleSet(formatter.get(), rule_set);
  return formatter;
}

struct CachedFormatter {
  std::string language;
  std::string rule_set;
  Formatter formatter;  // null when there are no such data
};

// A formatter is used by one thread at a time, and opening one reads all rules of its language.
UNumberFormat* ThreadFormatter(std::string_view language, std::string_view rule_set) {
  thread_local std::vector<CachedFormatter> cache;
  for (const CachedFormatter& entry : cache) {
    if (entry.language == language && entry.rule_set == rule_set) return entry.formatter.get();
  }
  CachedFormatter entry{std::string(language), std::string(rule_set), nullptr};
  entry.formatter = OpenFormatter(entry.language, entry.rule_set);
  return cache.emplace_back(std::move(entry)).formatter.get();
}

}  // namespace

std::optional<std::u16string> SpellOut(std::int64_t value, std::string_view language,
                                       std::string_view rule_set) {
  const UNumberFormat* const formatter = ThreadFormatter(language, rule_set);
  if (formatter == nullptr) return std::nullopt;
  std::u16string words(64, u'\0');
  for (;;) {
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = unum_formatInt64(
        formatter, value, words.data(), static_cast<std::int32_t>(words.size()), nullptr, &status);
    const bool overflowed = status == U_BUFFER_OVERFLOW_ERROR;
    if (U_FAILURE(status) && !overflowed) return std::nullopt;
    words.resize(static_cast<std::size_t>(length));
    if (!overflowed) return words;
  }
}

}  // namespace zentavo::platform
