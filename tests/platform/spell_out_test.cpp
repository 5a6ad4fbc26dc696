#include "zentavo/platform/spell_out.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace zentavo::platform {
namespace {

// Every system that this suite runs on either has the data of all languages or those of none.
bool HasData() {
  return SpellOut(1, "en", "").has_value();
}

struct WordsRow {
  std::int64_t value;
  const char* language;
  const char* rule_set;
  const char16_t* words;
};
constexpr WordsRow kRows[] = {
    {342, "en", "%no-such-rule-set", u"three hundred forty-two"},
    {201, "el", "%spellout-cardinal-feminine", u"διακόσιες μία"},
    {2, "ru", "%spellout-cardinal-feminine", u"две"},
};

TEST(SpellOut, LongWordsComeWholeAndUnknownLanguagesHaveNone) {
  EXPECT_EQ(SpellOut(5, "xx", ""), std::nullopt);
  EXPECT_EQ(SpellOut(5, "", ""), std::nullopt);
  const auto words = SpellOut(-777'777'777'777'777'777, "en", "");
  ASSERT_EQ(words.has_value(), HasData());
  if (!words) return;
  EXPECT_GT(words->size(), 200U);
  EXPECT_TRUE(words->ends_with(u"seven hundred seventy-seven"));
}

TEST(SpellOut, ThreadsSpellSideBySideInTheLanguageAndRuleSet) {
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([] {
      for (int round = 0; round < 50; ++round) {
        for (const WordsRow& row : kRows) {
          const auto words = SpellOut(row.value, row.language, row.rule_set);
          EXPECT_EQ(words.has_value(), HasData());
          EXPECT_EQ(words.value_or(row.words), row.words);
        }
      }
    });
  }
}

}  // namespace
}  // namespace zentavo::platform
