#include "zentavo/genlib/allocation.h"

#include <optional>
#include <vector>

#include "zentavo/framework/data_set.h"
#include "zentavo/genlib/carried_shares.h"
#include "zentavo/genlib/quiet_writes.h"

namespace zentavo {

void ZentavoEpimerismos(std::span<const double> Weights, std::span<double> Shares, double Amount,
                        std::int16_t Decimals) {
  if (Shares.size() < Weights.size()) throw ERangeError(u"Range check error");
  double sum = 0;
  for (const double weight : Weights) sum += weight;
  if (ZentavoDoubleEqual(sum, 0)) return;
  CarriedShares shares(sum, Amount, Decimals);
  LargestShare largest;
  std::optional<std::size_t> place_of_rest;
  for (std::size_t i = 0; i < Weights.size(); ++i) {
    Shares[i] += shares.Next(Weights[i]);
    if (largest.IsLarger(Shares[i])) place_of_rest = i;
  }
  if (place_of_rest && shares.HasRest()) {
    Shares[*place_of_rest] += ZentavoDoubleRnd(shares.Rest(), Decimals);
  }
}

namespace {

void AddToField(TDataSet& data_set, TField& field, double amount) {
  data_set.Edit();
  field.SetAsFloat(field.AsFloat() + amount);
  ZentavoPost(data_set);
}

std::vector<double> ReadWeights(TDataSet& source, const TField& weight) {
  std::vector<double> weights;
  weights.reserve(static_cast<std::size_t>(source.RecordCount()));
  for (source.First(); !source.Eof(); source.Next()) weights.push_back(weight.AsFloat());
  return weights;
}

}  // namespace

void ZentavoEpimerismos(TDataSet& Source, const TField& WeightField, TDataSet& Target,
                        TField& TargetField, double Amount, std::int16_t Decimals) {
  const std::vector<double> weights = ReadWeights(Source, WeightField);
  double sum = 0;
  for (const double weight : weights) sum += weight;
  if (ZentavoDoubleEqual(sum, 0)) return;
  CarriedShares shares(sum, Amount, Decimals);
  LargestShare largest;
  std::optional<TBookmark> place_of_rest;
  std::size_t i = 0;
  for (Target.First(); !Target.Eof(); Target.Next(), ++i) {
    if (i >= weights.size()) continue;
    AddToField(Target, TargetField, shares.Next(weights[i]));
    if (largest.IsLarger(TargetField.AsFloat())) place_of_rest = Target.GetBookmark();
  }
  // What found no record is no rest.
  for (; i < weights.size(); ++i) shares.Next(weights[i]);
  if (place_of_rest && shares.HasRest()) {
    Target.GotoBookmark(*place_of_rest);
    AddToField(Target, TargetField, shares.Rest());
  }
}

}  // namespace zentavo
