// Business formulas beside muParser, muparserx and Lua: a new text each time in a kept engine, and
// one text prepared and repeated while its variables change.
#include <mpParser.h>
#include <muParser.h>
#include <lua.hpp>

#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>

#include "ratios.h"
#include "zentavo/formula/parser.h"

namespace {

struct Formula {
  const char* name;
  std::string zentavo, muparser, lua;
};

std::string Terms() {
  std::string text;
  for (int term = 0; term < 40; ++term) {
    text += (term == 0 ? "" : term % 3 == 0 ? "-" : "+");
    text += std::string(1, static_cast<char>('a' + term % 8));
    if (term % 4 == 0) text += "*2";
  }
  return text;
}

const std::array<Formula, 5>& Formulas() {
  static const std::array<Formula, 5> formulas = {{
      {"2+3*4", "2+3*4", "2+3*4", "2+3*4"},
      {"price", "(Price*Qty)*(1-Disc/100)", "(Price*Qty)*(1-Disc/100)", "(Price*Qty)*(1-Disc/100)"},
      {"if", "IF(Qty>10, Price*0.9, Price)", "Qty>10 ? Price*0.9 : Price",
       "IF(Qty>10, Price*0.9, Price)"},
      {"terms", Terms(), Terms(), Terms()},
      {"functions", "max(a,b,3)+min(c,d)*round(x,2)", "max(a,b,3)+min(c,d)*round2(x,2)",
       "max(a,b,3)+min(c,d)*round(x,2)"},
  }};
  return formulas;
}

struct Variable {
  const char* name;
  double value;
};
std::array<Variable, 12> variables = {{{"Price", 12.5},
                                       {"Qty", 12},
                                       {"Disc", 5},
                                       {"a", 1},
                                       {"b", 2},
                                       {"c", 3},
                                       {"d", 4},
                                       {"e", 5},
                                       {"f", 6},
                                       {"g", 7},
                                       {"h", 8},
                                       {"x", 2.345}}};

// Two texts of one formula that differ in a blank, so that no engine can keep what it made of one.
std::array<std::string, 2> TwoTexts(const std::string& text) {
  return {text, text + " "};
}

void ChangeVariables() {
  variables[1].value = variables[1].value == 12 ? 8 : 12;
}

double Round2(double value, double digits) {
  const double power = std::pow(10.0, digits);
  return std::trunc((value + (value >= 0 ? 0.5 : -0.5) / power) * power) / power;
}

// Zentavo ---------------------------------------------------------------------------------------

void Define(zentavo::TXParser& parser) {
  for (Variable& variable : variables) {
    parser.InsertIdent(zentavo::FromUtf8(variable.name), zentavo::tokPtrVariable, 0,
                       zentavo::resNumber, &variable.value);
  }
}

void ZentavoOneShot(benchmark::State& state, const Formula& formula) {
  zentavo::TXParser parser;
  Define(parser);
  const auto texts = TwoTexts(formula.zentavo);
  const std::array<zentavo::String, 2> wide = {zentavo::FromUtf8(texts[0]),
                                               zentavo::FromUtf8(texts[1])};
  for (std::size_t run = 0; auto _ : state) {
    parser.SetFormula(wide[run++ % 2]);
    parser.Execute();
    benchmark::DoNotOptimize(parser.CResult.ResultNum);
  }
}

void ZentavoRepeated(benchmark::State& state, const Formula& formula) {
  zentavo::TXParser parser;
  Define(parser);
  parser.SetFormula(zentavo::FromUtf8(formula.zentavo));
  for (auto _ : state) {
    ChangeVariables();
    parser.Execute();
    benchmark::DoNotOptimize(parser.CResult.ResultNum);
  }
}

// muParser --------------------------------------------------------------------------------------

void Define(mu::Parser& parser) {
  for (Variable& variable : variables) parser.DefineVar(variable.name, &variable.value);
  parser.DefineFun("round2", Round2);
}

void MuParserOneShot(benchmark::State& state, const Formula& formula) {
  mu::Parser parser;
  Define(parser);
  const auto texts = TwoTexts(formula.muparser);
  for (std::size_t run = 0; auto _ : state) {
    parser.SetExpr(texts[run++ % 2]);
    benchmark::DoNotOptimize(parser.Eval());
  }
}

void MuParserRepeated(benchmark::State& state, const Formula& formula) {
  mu::Parser parser;
  Define(parser);
  parser.SetExpr(formula.muparser);
  for (auto _ : state) {
    ChangeVariables();
    benchmark::DoNotOptimize(parser.Eval());
  }
}

// muparserx -------------------------------------------------------------------------------------

class Round2X : public mup::ICallback {
 public:
  Round2X() : ICallback(mup::cmFUNC, "round2", 2) {}
  void Eval(mup::ptr_val_type& result, const mup::ptr_val_type* args, int) override {
    *result = Round2(args[0]->GetFloat(), args[1]->GetFloat());
  }
  const mup::char_type* GetDesc() const override { return "round2(x, digits)"; }
  mup::IToken* Clone() const override { return new Round2X(*this); }
};

void MuParserXRepeated(benchmark::State& state, const Formula& formula) {
  mup::ParserX parser(mup::pckALL_NON_COMPLEX);
  std::array<mup::Value, variables.size()> values;
  for (std::size_t index = 0; index < variables.size(); ++index) {
    values[index] = variables[index].value;
    if (parser.IsConstDefined(variables[index].name)) parser.RemoveConst(variables[index].name);
    parser.DefineVar(variables[index].name, mup::Variable(&values[index]));
  }
  parser.DefineFun(new Round2X);
  parser.SetExpr(formula.muparser);
  for (auto _ : state) {
    ChangeVariables();
    values[1] = variables[1].value;
    benchmark::DoNotOptimize(parser.Eval().GetFloat());
  }
}

// Lua -------------------------------------------------------------------------------------------

struct LuaEngine {
  LuaEngine() : state(luaL_newstate()) {
    luaL_openlibs(state);
    const char* prelude =
        "max, min = math.max, math.min\n"
        "function IF(c, a, b) if c then return a else return b end end\n"
        "function round(x, n) local p = 10^n; x = x + (x >= 0 and 0.5 or -0.5) / p\n"
        "  return math.modf(x * p) / p end\n";
    if (luaL_dostring(state, prelude) != LUA_OK) std::abort();
    for (const Variable& variable : variables) {
      lua_pushnumber(state, variable.value);
      lua_setglobal(state, variable.name);
    }
  }
  LuaEngine(const LuaEngine&) = delete;
  LuaEngine& operator=(const LuaEngine&) = delete;
  ~LuaEngine() { lua_close(state); }

  void Load(const std::string& text) const {
    if (luaL_loadbuffer(state, text.data(), text.size(), "f") != LUA_OK) std::abort();
  }
  double Call() const {
    if (lua_pcall(state, 0, 1, 0) != LUA_OK) std::abort();
    const double value = lua_tonumber(state, -1);
    lua_pop(state, 1);
    return value;
  }

  lua_State* state;
};

void LuaOneShot(benchmark::State& state, const Formula& formula) {
  LuaEngine lua;
  const auto texts = TwoTexts("return " + formula.lua);
  for (std::size_t run = 0; auto _ : state) {
    lua.Load(texts[run++ % 2]);
    benchmark::DoNotOptimize(lua.Call());
  }
}

void LuaRepeated(benchmark::State& state, const Formula& formula) {
  LuaEngine lua;
  lua.Load("return " + formula.lua);
  for (auto _ : state) {
    ChangeVariables();
    lua_pushnumber(lua.state, variables[1].value);
    lua_setglobal(lua.state, "Qty");
    lua_pushvalue(lua.state, -1);
    benchmark::DoNotOptimize(lua.Call());
  }
}

using Runner = void (*)(benchmark::State&, const Formula&);

void Register(const char* group, const char* who, Runner runner) {
  for (const Formula& formula : Formulas()) {
    const std::string name = std::string(group) + "/" + formula.name + "/" + who;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [runner, &formula](benchmark::State& s) { runner(s, formula); });
  }
}

}  // namespace

int main(int argc, char** argv) {
  Register("one-shot", "zentavo", ZentavoOneShot);
  Register("one-shot", "muParser", MuParserOneShot);
  Register("one-shot", "Lua", LuaOneShot);
  Register("repeated", "zentavo", ZentavoRepeated);
  Register("repeated", "muParser", MuParserRepeated);
  Register("repeated", "muparserx", MuParserXRepeated);
  Register("repeated", "Lua", LuaRepeated);
  return bench::RunWithRatios(argc, argv);
}
