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
    {0, "en", "", u"zero"},
    {-7, "en", "", u"minus seven"},
    {342, "en", "%spellout-cardinal", u"three hundred forty-two"},
    {342, "en", "%no-such-rule-set", u"three hundred forty-two"},
    {201, "el", "%spellout-cardinal-neuter", u"διακόσια ένα"},
    {201, "el", "%spellout-cardinal-feminine", u"διακόσιες μία"},
    {2, "ru", "%spellout-cardinal-feminine", u"две"},
    {4, "sr_Latn", "%spellout-cardinal-masculine", u"četiri"},
};

TEST(SpellOut, SpellsInTheLanguageAndRuleSet) {
  for (const WordsRow& row : kRows) {
    SCOPED_TRACE(testing::Message() << row.value << " " << row.language << " " << row.rule_set);
    const auto words = SpellOut(row.value, row.language, row.rule_set);
    ASSERT_EQ(words.has_value(), HasData());
    EXPECT_EQ(words.value_or(row.words), row.words);
  }
}

TEST(SpellOut, UnknownLanguageHasNoWords) {
  EXPECT_EQ(SpellOut(5, "xx", ""), std::nullopt);
  EXPECT_EQ(SpellOut(5, "", ""), std::nullopt);
}

TEST(SpellOut, LongWordsComeWhole) {
  const auto words = SpellOut(-777'777'777'777'777'777, "en", "");
  ASSERT_EQ(words.has_value(), HasData());
  if (!words) return;
  EXPECT_GT(words->size(), 200U);
  EXPECT_TRUE(words->ends_with(u"seven hundred seventy-seven"));
}

TEST(SpellOut, ThreadsSpellSideBySide) {
  std::vector<std::thread> threads;
  std::vector<int> right(4);
  threads.reserve(right.size());
  for (int& count : right) {
    threads.emplace_back([&count] {
      for (int round = 0; round < 50; ++round) {
        for (const WordsRow& row : kRows) {
          const auto words = SpellOut(row.value, row.language, row.rule_set);
          count += words == (HasData() ? std::optional<std::u16string>(row.words) : std::nullopt);
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, std::vector<int>(4, 50 * static_cast<int>(std::size(kRows))));
}

}  // namespace
}  // namespace zentavo::platform
