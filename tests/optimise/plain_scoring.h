// The scoring algorithm as it is told: every target visits every left row, and every right row for
// each left row without a cached score. The model that the library's is compared with.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <set>
#include <vector>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/framework/variant_operators.h"

namespace zentavo::testing {

class PlainScoring {
 public:
  using Table = std::vector<std::vector<Variant>>;
  using Matches = std::array<std::vector<std::int32_t>, 3>;

  Matches Execute(const Table& left, const Table& right, const std::vector<std::int32_t>& weights,
                  double tolerance) {
    weights_ = weights;
    left_ = &left;
    right_ = &right;
    tolerance_ = tolerance;
    if (!left.empty()) weights_.resize(std::min(weights.size(), left[0].size()));
    AddScores(0, 0);
    std::sort(scores_.begin(), scores_.end());
    cache_.assign(left.size(), {});
    matched_.clear();
    matches_ = {};
    for (auto score = scores_.rbegin(); score != scores_.rend(); ++score) RunScore(*score);
    return matches_;
  }

 private:
  struct Cached {
    std::int32_t right = 0, score = 0;
  };

  static std::int32_t Add(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
  }

  void AddScores(std::size_t index, std::int32_t sum) {
    if (index == weights_.size()) return scores_.push_back(sum);
    AddScores(index + 1, Add(sum, weights_[index]));
    AddScores(index + 1, sum);
  }

  void RunScore(std::int32_t score) {
    for (std::size_t i = 0; i < left_->size(); ++i) {
      if (IsCached(i, score)) {
        Match(i, cache_[i].right, score);
        continue;
      }
      for (std::size_t j = 0; j < right_->size(); ++j) {
        const auto row = static_cast<std::int32_t>(j);
        if (matched_.count(row) != 0) continue;
        const std::int32_t found = Score((*left_)[i], (*right_)[j]);
        if (found > cache_[i].score) cache_[i] = {row, found};
        if (cache_[i].score != score) continue;
        Match(i, row, score);
        break;
      }
    }
  }

  bool IsCached(std::size_t left, std::int32_t score) {
    if (cache_[left].score != score) return false;
    if (matched_.count(cache_[left].right) == 0) return true;
    cache_[left].score = 0;
    return false;
  }

  void Match(std::size_t left, std::int32_t right, std::int32_t score) {
    matches_[0].push_back(static_cast<std::int32_t>(left));
    matches_[1].push_back(right);
    matches_[2].push_back(score);
    matched_.insert(right);
  }

  std::int32_t Score(const std::vector<Variant>& left, const std::vector<Variant>& right) const {
    std::int32_t score = 0;
    for (std::size_t c = 0; c < weights_.size(); ++c) {
      const Variant l = c < left.size() ? left[c] : Variant();
      const Variant r = c < right.size() ? right[c] : Variant();
      if (!IsEmpty(l) && (AreEqual(l, r) || AreNear(l, r))) score = Add(score, weights_[c]);
    }
    return score;
  }

  static bool IsEmpty(const Variant& value) {
    return value.IsNull() || value.IsEmpty() || (value.IsString() && VarToStr(value).empty());
  }

  static bool AreEqual(const Variant& left, const Variant& right) {
    try {
      return left == right;
    } catch (const Exception&) {
      return false;
    }
  }

  static bool IsFloat(const Variant& value) {
    return value.Kind() == VariantKind::kSingle || value.Kind() == VariantKind::kDouble ||
           value.Kind() == VariantKind::kCurrency;
  }

  bool AreNear(const Variant& left, const Variant& right) const {
    if (!(tolerance_ > 0) || !IsFloat(left) || !IsFloat(right)) return false;
    return !(std::abs(VarToDouble(left - right)) > tolerance_);
  }

  std::vector<std::int32_t> weights_, scores_;
  const Table* left_ = nullptr;
  const Table* right_ = nullptr;
  double tolerance_ = 0;
  std::vector<Cached> cache_;
  std::set<std::int32_t> matched_;
  Matches matches_;
};

}  // namespace zentavo::testing
