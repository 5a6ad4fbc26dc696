#include "zentavo/textout/number_words.h"

#include <optional>

#include "zentavo/foundation/errors.h"
#include "zentavo/platform/spell_out.h"

namespace zentavo {
namespace {

void ReplaceAll(String& text, StringView from, StringView to) {
  for (std::size_t at = text.find(from); at != String::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

// A number of several words: the last one is joined to those before it in the language's own way,
// unless it is joined so already.
void JoinLastWord(const SpellLanguage& language, String& words) {
  if (language.before_last_word.empty()) return;
  if (words.find(language.before_last_word) != String::npos) return;
  const std::size_t blank = words.rfind(u' ');
  if (blank != String::npos) words.replace(blank, 1, language.before_last_word);
}

// `value` below 1000. The data's own words for larger numbers are ungrammatical in some languages;
// those up to 999 need only the language's repairs.
String GroupInWords(const SpellLanguage& language, std::int64_t value, std::string_view rule_set) {
  std::optional<String> words = platform::SpellOut(value, language.locale, rule_set);
  if (!words) ZentavoError(u"Amounts in words need the system's language data (icu.dll)");
  for (const WordRepair& repair : language.repairs) ReplaceAll(*words, repair.wrong, repair.right);
  JoinLastWord(language, *words);
  if (language.between_words.empty()) ReplaceAll(*words, u" ", u"");
  return *std::move(words);
}

StringView FormFor(const SpellLanguage& language, std::int64_t value, const CountedNoun& noun) {
  if (language.plural == PluralRule::kOneAndMany) return value == 1 ? noun.one : noun.many;
  const std::int64_t units = value % 10;
  if (value % 100 / 10 == 1 || units == 0 || units > 4) return noun.many;
  return units == 1 ? noun.one : noun.few;
}

// A group of thousands, millions and so on with the name of its scale; the last group has none.
String ScaledGroup(const SpellLanguage& language, std::int64_t group, std::size_t scale,
                   std::string_view rule_set) {
  if (scale == 0) return GroupInWords(language, group, rule_set);
  const CountedNoun& noun = language.scales[scale - 1];
  if (group == 1 && !noun.alone.empty()) return String(noun.alone);
  StringView separator = BeforeNoun(language, group);
  if (language.between_words.empty()) separator = {};
  return GroupInWords(language, group, noun.rule_set)
      .append(separator)
      .append(FormFor(language, group, noun));
}

// What joins the last group to those before it. A last group with a joint of its own needs none.
StringView GroupJoint(const SpellLanguage& language, const String& group, bool is_last) {
  const StringView joint = language.before_last_word;
  if (!is_last || joint.empty() || group.find(joint) != String::npos) return language.between_words;
  return joint;
}

}  // namespace

StringView BeforeNoun(const SpellLanguage& language, std::int64_t value) {
  const bool is_long = value > 0 && (value % 100 == 0 || value % 100 >= 20);
  return is_long ? language.before_noun : StringView(u" ");
}

String NumberInWords(const SpellLanguage& language, std::int64_t value, std::string_view rule_set) {
  if (value == 0) return GroupInWords(language, 0, rule_set);
  String words;
  std::int64_t unit = 1'000'000'000'000;
  for (std::size_t scale = language.scales.size() + 1; scale-- > 0; unit /= 1000) {
    const std::int64_t group = value / unit % 1000;
    if (group == 0) continue;
    const String group_words = ScaledGroup(language, group, scale, rule_set);
    if (!words.empty()) words += GroupJoint(language, group_words, value % unit == 0);
    words += group_words;
  }
  return words;
}

String CountInWords(const SpellLanguage& language, std::int64_t value, const CountedNoun& noun) {
  if (value == 1 && !noun.alone.empty()) return String(noun.alone);
  return NumberInWords(language, value, noun.rule_set)
      .append(BeforeNoun(language, value))
      .append(FormFor(language, value, noun));
}

}  // namespace zentavo
