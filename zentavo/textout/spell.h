// Amounts in words, as an invoice words them.
//
//   Spell(1234.56, u"", u"EL");      // "χίλια διακόσια τριάντα τέσσερα και πενήντα έξι λεπτά"
//   Spell(1234.56, u"ευρώ", u"EL");  // "... τριάντα τέσσερα ευρώ και πενήντα έξι λεπτά"
//
// The currency's name and the hundredths agree with the number as the language has it:
//
//   BG  хиляда двеста тридесет и четири лв. и петдесет и шест стотинки
//   SR  hiljadu dvesta trideset i četiri dinara i pedeset i šest para
//   EN  one thousand two hundred thirty-four euro and fifty-six cents
//   TR  binikiyüzotuzdört TL, ellialtı kuruş
//   RO  o mie două sute treizeci și patru de lei și cincizeci și șase de bani
//   RU  одна тысяча двести тридцать четыре руб. и пятьдесят шесть копеек
//   EL  χίλια διακόσια τριάντα τέσσερα ευρώ και πενήντα έξι λεπτά
//
// Serbian is written in Latin letters, as most invoices there are. Turkish number words are joined
// into one, as the language's rules ask for sums of money. Bulgarian uses the full number words
// (двадесет, not двайсет).
//
// Hundredths bear the name of the language's home subunit: стотинки, para, cents, kuruş, bani,
// копейки, λεπτά. A currency whose name begins as the euro's or the dollar's does (name, code or
// sign) has cents in every language: цент, cent, sent, σεντ for the dollar in Greek; in English a
// pound has pence. The number of whole units agrees in gender with that currency ("едно евро",
// "един лев").
#pragma once

#include "zentavo/framework/text.h"

namespace zentavo {

// Returns `amount` in words: the whole part, and the hundredths when there are any, each in words,
// joined as the language joins them, with the currency's name when one is given. Hundredths are
// rounded half away from zero; below 1 the whole part is the word for zero; a negative amount, when
// anything is left of it, begins with the language's word for minus.
//
// `language` is a code in any case: "BG", "SR", "EN", "TR", "RO", "RU"; everything else is Greek.
// `currency` is a name printed as it stands ("euro"), empty for none.
//
// Raises EZentavoError when the system has no language data ("Amounts in words need the system's
// language data (icu.dll)"), and "Amount out of range: %s" for NaN, infinities and magnitudes of
// 1E15 and above.
// May be called from any thread.
ZENTAVO_API String Spell(double amount, StringView currency, StringView language);

}  // namespace zentavo
