#include <memory>

#include "tools/zentavo/arguments.h"
#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/allocation.h"
#include "zentavo/genlib/amounts.h"

namespace zentavo::tool {

namespace {

void PrintNumber(double value) {
  AnsiString text;
  AppendFloat(text, value);
  PrintUtf8(text);
}

void AddRound(CLI::App& parent) {
  struct Options {
    std::string value;
    std::int32_t decimals = 0;
    std::string direction;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command = *parent.add_subcommand("round", "Round an amount to decimals");
  command.add_option("VALUE", options->value, "The amount")->required();
  command.add_option("DECIMALS", options->decimals, "How many; negative: to tens, hundreds, ...")
      ->required();
  command.add_option("DIRECTION", options->direction, "Away from or toward zero")
      ->check(CLI::IsMember({"up", "down"}));
  command.callback([options] {
    const int mode = options->direction == "up"     ? int{rndUp}
                     : options->direction == "down" ? int{rndDown}
                                                    : 0;
    PrintNumber(ZentavoDoubleRnd(ReadNumberArgument(options->value), options->decimals, mode));
  });
}

void AddStep(CLI::App& parent) {
  struct Options {
    std::string value;
    std::string step;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command = *parent.add_subcommand("step", "Round an amount to a multiple of a step");
  command.add_option("VALUE", options->value, "The amount")->required();
  command.add_option("STEP", options->step, "The step")->required();
  command.callback([options] {
    PrintNumber(xARoundProc(ReadNumberArgument(options->value), ReadNumberArgument(options->step)));
  });
}

void AddEqual(CLI::App& parent) {
  struct Options {
    std::string a;
    std::string b;
  };
  auto options = std::make_shared<Options>();
  CLI::App& command = *parent.add_subcommand("equal", "Whether two amounts count as equal");
  command.add_option("A", options->a, "An amount")->required();
  command.add_option("B", options->b, "An amount")->required();
  command.callback([options] {
    const bool equal =
        ZentavoDoubleEqual(ReadNumberArgument(options->a), ReadNumberArgument(options->b));
    PrintUtf8(equal ? "yes" : "no");
  });
}

struct AllocateOptions {
  std::string amount;
  std::vector<std::string> weights;
  std::int16_t decimals = 2;
  std::string into;
};

void Allocate(const AllocateOptions& options) {
  const std::vector<double> weights = NumberArguments(options.weights);
  std::vector<double> shares(weights.size());
  if (!options.into.empty()) shares = NumberArguments(SplitList(options.into));
  if (shares.size() != weights.size()) {
    throw UsageError(u"--into has " + IntToStr(static_cast<std::int64_t>(shares.size())) +
                     u" amounts for " + IntToStr(static_cast<std::int64_t>(weights.size())) +
                     u" weights");
  }
  ZentavoEpimerismos(weights, shares, ReadNumberArgument(options.amount), options.decimals);
  String lines;
  for (const double share : shares) {
    lines += FloatToFixed(share, options.decimals, Grouping::kNone, u'.', u',') + u"\n";
  }
  PrintText(lines);
}

void AddAllocate(CLI::App& parent) {
  auto options = std::make_shared<AllocateOptions>();
  CLI::App& command = *parent.add_subcommand("allocate", "Allocate an amount over weights");
  command.add_option("AMOUNT", options->amount, "The amount")->required();
  command.add_option("WEIGHT", options->weights, "A weight for each share")->required();
  command.add_option("--decimals", options->decimals, "Decimals of the shares (2)");
  command.add_option("--into", options->into, "S1,S2,...: amounts the shares are added to");
  command.callback([options] { Allocate(*options); });
}

}  // namespace

void AddAmountCommand(CLI::App& program) {
  CLI::App& command = *program.add_subcommand("amount", "Round, compare and allocate amounts");
  command.require_subcommand(1);
  AddRound(command);
  AddStep(command);
  AddEqual(command);
  AddAllocate(command);
}

}  // namespace zentavo::tool
