#include "zentavo/platform/spell_out.h"

#include <windows.h>

#include <bit>
#include <mutex>
#include <vector>

namespace zentavo::platform {
namespace {

// What the system's icu.dll declares, as far as it is used here.
using UNumberFormat = void;
using UErrorCode = int;
constexpr UErrorCode kBufferOverflow = 15;
constexpr int kSpellOutStyle = 5;
constexpr int kDefaultRuleSet = 6;
constexpr int kValidLocale = 1;

struct IcuFunctions {
  UNumberFormat*(__cdecl* open)(int style, const char16_t* pattern, std::int32_t pattern_length,
                                const char* locale, void* parse_error, UErrorCode* status);
  void(__cdecl* set_text)(UNumberFormat* formatter, int attribute, const char16_t* value,
                          std::int32_t length, UErrorCode* status);
  const char*(__cdecl* locale)(const UNumberFormat* formatter, int type, UErrorCode* status);
  std::int32_t(__cdecl* format)(const UNumberFormat* formatter, std::int64_t number,
                                char16_t* result, std::int32_t capacity, void* position,
                                UErrorCode* status);
  void(__cdecl* close)(UNumberFormat* formatter);
  bool complete;
};

template <typename F>
bool Find(HMODULE module, const char* name, F& function) {
  function = std::bit_cast<F>(GetProcAddress(module, name));
  return function != nullptr;
}

IcuFunctions FindFunctions() {
  IcuFunctions icu{};
  const HMODULE module = LoadLibraryExW(L"icu.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (module == nullptr) return icu;
  icu.complete =
      Find(module, "unum_open", icu.open) && Find(module, "unum_setTextAttribute", icu.set_text) &&
      Find(module, "unum_getLocaleByType", icu.locale) &&
      Find(module, "unum_formatInt64", icu.format) && Find(module, "unum_close", icu.close);
  return icu;
}

// The module stays loaded for good: other threads may be calling it.
const IcuFunctions& Icu() {
  static const IcuFunctions functions = FindFunctions();
  return functions;
}

// For a language that it does not have the data answer with the user's own, or with digits.
bool SpeaksLanguage(const UNumberFormat* formatter, std::string_view language) {
  UErrorCode status = 0;
  const char* const found = Icu().locale(formatter, kValidLocale, &status);
  return status <= 0 && found != nullptr &&
         std::string_view(found).substr(0, 2) == language.substr(0, 2);
}

void ChooseRuleSet(UNumberFormat* formatter, std::string_view rule_set) {
  if (rule_set.empty()) return;
  const std::u16string name(rule_set.begin(), rule_set.end());
  UErrorCode ignored = 0;  // an unknown rule set leaves the default one in place
  Icu().set_text(formatter, kDefaultRuleSet, name.data(), static_cast<std::int32_t>(name.size()),
                 &ignored);
}

UNumberFormat* OpenFormatter(const std::string& language, std::string_view rule_set) {
  UErrorCode status = 0;
  UNumberFormat* const formatter =
      Icu().open(kSpellOutStyle, nullptr, 0, language.c_str(), nullptr, &status);
  if (status > 0) return nullptr;
  if (!SpeaksLanguage(formatter, language)) {
    Icu().close(formatter);
    return nullptr;
  }
  ChooseRuleSet(formatter, rule_set);
  return formatter;
}

struct CachedFormatter {
  std::string language;
  std::string rule_set;
  UNumberFormat* formatter;  // null when there are no such data
};

// The formatters live as long as the process: a handful, one for each language and rule set, which
// no thread's end and no unloading of the library has to close. Guarded by FormatterLock.
std::vector<CachedFormatter>& Formatters() {
  static auto* const formatters = new std::vector<CachedFormatter>;
  return *formatters;
}

// Held while a formatter is looked up and used, since one serves one thread at a time.
std::mutex& FormatterLock() {
  static auto* const lock = new std::mutex;
  return *lock;
}

const UNumberFormat* FindFormatter(std::string_view language, std::string_view rule_set) {
  for (const CachedFormatter& entry : Formatters()) {
    if (entry.language == language && entry.rule_set == rule_set) return entry.formatter;
  }
  CachedFormatter entry{std::string(language), std::string(rule_set), nullptr};
  entry.formatter = OpenFormatter(entry.language, entry.rule_set);
  return Formatters().emplace_back(entry).formatter;
}

}  // namespace

std::optional<std::u16string> SpellOut(std::int64_t value, std::string_view language,
                                       std::string_view rule_set) {
  if (!Icu().complete) return std::nullopt;
  const std::lock_guard guard(FormatterLock());
  const UNumberFormat* const formatter = FindFormatter(language, rule_set);
  if (formatter == nullptr) return std::nullopt;
  std::u16string words(64, u'\0');
  for (;;) {
    UErrorCode status = 0;
    const std::int32_t length = Icu().format(
        formatter, value, words.data(), static_cast<std::int32_t>(words.size()), nullptr, &status);
    if (status > 0 && status != kBufferOverflow) return std::nullopt;
    words.resize(static_cast<std::size_t>(length));
    if (status <= 0) return words;
  }
}

}  // namespace zentavo::platform
