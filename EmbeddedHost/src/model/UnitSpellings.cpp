#include "EmbeddedHost/src/model/UnitSpellings.h"

#include <algorithm>
#include <unordered_map>

namespace EmbeddedHost {

namespace {

struct Spellings {
  std::string_view meant;
  std::string_view written; // parted by commas
};

constexpr Spellings kMeanings[] = {
    {"W.h", "Wh"},
    {"kW.h", "kWh, kwh, Kwh, KWh, KWH"},
    {"mW.h", "mWh"},
    {"MW.h", "MWh"},
    {"GW.h", "GWh"},
    {"TW.h", "TWh"},
    {"W.s", "Ws"},
    {"kW.s", "kWs"},
    {"kcal", "kCal"},
    {"1e6 Btu", "MMBtu"},
    {"N.m", "Nm"},
    {"mN.m", "mNm"},
    {"kN.m", "kNm"},
    {"MN.m", "MNm"},
    {"N.mm", "Nmm"},
    {"N.cm", "Ncm"},
    {"N.m.s", "Nms"},
    {"ft.lbf", "ftlbf"},
    {"in.lbf", "inlbf"},
    {"kgf.m", "kgfm"},
    {"kgf.cm", "kgfcm"},
    {"A.s", "As"},
    {"A.h", "Ah"},
    {"mA.h", "mAh"},
    {"kA.h", "kAh"},
    {"V.s", "Vs"},
    {"V.A", "var, VAr, VAR"},
    {"kV.A", "kvar, kVAr, kVAR"},
    {"MV.A", "Mvar, MVAr, MVAR"},
    {"kW", "kw, Kw, KW"},
    {"MW", "Mw"},
    {"hp", "HP"},
    {"metric_horsepower", "CV"},
    {"turn/min", "RPM, Rpm, U/min, r/min, tr/min, upm, Upm"},
    {"turn/s", "U/s"},
    {"turn", "rev, revs"},
    {"degree", "deg, degs, Deg"},
    {"millidegree", "mdeg"},
    {"grade", "gon"},
    {"Hz", "hz, HZ"},
    {"kHz", "khz, Khz, KHz"},
    {"MHz", "Mhz, MHZ"},
    {"GHz", "Ghz"},
    {"degC", "oC, C\u00b0, \u00b0Celsius, degCelsius"},
    {"degF", "oF"},
    {"bar", "bara"},
    {"mbar", "mbara"},
    {"at", "ata"},
    {"psi", "psia, PSI"},
    {"lbf/ft2", "psf"},
    {"hPa", "hpa"},
    {"kPa", "kpa, Kpa, KPa, KPA"},
    {"MPa", "Mpa"},
    {"GPa", "gpa, Gpa"},
    {"mmHg", "mmHG"},
    {"mm.H2O", "mmH2O, mmWC, mmWS"},
    {"in.H2O", "inH2O, inWC"},
    {"kgf", "kp"},
    {"kN", "KN"},
    {"dyne", "dyn"},
    {"N.s", "Ns"},
    {"kg", "Kg, KG, kgs"},
    {"gram", "gm"},
    {"lb", "lbs, lbm"},
    {"lb/ft3", "pcf"},
    {"mmol/l", "mM"},
    {"umol/l", "uM, \u00b5M"},
    {"km", "Km"},
    {"mil", "thou"},
    {"au", "AU"},
    {"light_year", "ly"},
    {"parsec", "pc"},
    {"m2", "sqm, sq m"},
    {"ft2", "sqft, sq ft"},
    {"in2", "sqin, sq in"},
    {"cm3", "ccm"},
    {"ft3", "cuft"},
    {"in3", "cuin"},
    {"l", "ltr"},
    {"m/s", "mps"},
    {"in/s", "ips"},
    {"ft/min", "fpm"},
    {"km/h", "kmh, Kmh, kmph"},
    {"l/min", "lpm, LPM"},
    {"l/s", "lps"},
    {"ft3/min", "cfm, CFM"},
    {"ft3/s", "cfs"},
    {"min", "mins, MIN"},
    {"h", "hrs, Hr, HR, Hrs"},
    {"week", "wk"},
    {"Pa.s", "Pas"},
    {"mPa.s", "mPas"},
    {"poise", "P"},
    {"centipoise", "cP"},
    {"cSt", "cst"},
    {"ohm.m", "ohmm, Ohmm, \u03a9m"},
    {"ohm.cm", "ohmcm, \u03a9cm"},
    {"maxwell", "Mx"},
    {"gravity", "gn, gee"},
    {"1", "-, --, dimensionless, pcs, strain"},
    {"%", "pct"},
    {"1e-3", "\u2030, permille"},
    {"1e-6", "\u00b5\u03b5, microstrain"},
};
constexpr Spellings kProducts[] = {
    {"kg.m2", "kgm2"},  {"kg.cm2", "kgcm2"}, {"kg.mm2", "kgmm2"}, {"g.cm2", "gcm2"},
    {"kg.K", "kgK"},    {"g.K", "gK"},       {"mol.K", "molK"},   {"kg.degC", "kgC, kg\u00b0C, kgdegC"},
    {"lb.degF", "lbF"},
};
constexpr Spellings kAmbiguous[] = {
    {"mile/h or milliphot", "mph"},
    {"mile/h or megaphot", "Mph"},
    {"km/h or kilophot", "kph"},
    {"lb/h or picophot", "pph"},
    {"ft/s or Hz", "fps"},
    {"Hz or turn/s", "cps"},
    {"metric_horsepower or petasiemens", "PS"},
    {"metric_horsepower or petasecond", "Ps"},
    {"metric_horsepower or centihour", "ch"},
    {"ton_of_refrigeration or teraroentgen", "TR"},
    {"T.m or terametre", "Tm"},
    {"gallon or cm/s2", "gal, gals, Gal"},
    {"gallon/min or UK_liquid_gallon/min", "gpm"},
    {"mile/gallon or mile/UK_liquid_gallon", "mpg"},
    {"year or are", "a"},
    {"MA or 1e6 year or megaare", "Ma"},
    {"mA or milliare", "ma"},
    {"1 or nA or nanoare", "na"},
    {"Pa or picoare", "pa"},
    {"Pa or petaampere", "PA"},
    {"uA or 149597900000 m", "ua"},
    {"avoirdupois_ounce or fluid_ounce or ozf", "oz"},
    {"fluid_ounce or femtoliter.fluid_ounce", "fl oz"},
    {"pint or big_point", "pt"},
    {"carat or centitonne", "ct"},
    {"knot or kilotonne", "kt"},
    {"knot or kN", "kn"},
    {"tonne or short_ton or long_ton", "ton, tons"},
    {"nautical_mile or nanomile", "nmi"},
    {"nautical_mile or N.m", "NM"},
    {"1 or picohenry", "pH"},
    {"1e-3 or 1e-12", "ppt"},
    {"degR or roentgen", "R"},
    {"mbar or millibarn", "mb"},
    {"kbit or kilobarn", "kb"},
    {"Mbit or megabarn", "Mb"},
    {"Gbit or gigabarn", "Gb"},
    {"min or megainch", "Min"},
    {"m.H2O or 1e-3 H2O", "mH2O"},
    {"kgf.m or gram", "mkg"},
    {"kgf.m or kg.m", "kgm"},
    {"1 or micronit", "unit, units"},
    {"1/inch or 0.1 pi", "dpi"},
    {"1/inch or 1e-12 pi", "ppi"},
    {"1 or newton/A", "N/A"},
    {"inch or arcsec", "\", \u2033"},
    {"foot or arcmin", "', \u2032"},
    {"um or 1e-6", "\u00b5"},
    {"um or 1e-3 u", "mu"},
    {"1e-6 or 1e-6 e", "ue, \u00b5e"},
    {"gauss or gravity", "G"},
    {"gauss or gigasecond", "Gs"},
    {"kgauss or kg", "kG"},
    {"gravity or 1", "g0"},
    {"V/gravity or V/gram", "V/g"},
    {"mV/gravity or mV/gram", "mV/g"},
    {"gravity2/Hz or gram2/Hz", "g2/Hz"},
    {"degC or 0.01 grade", "centigrade"},
    {"degree or grade", "grad"},
    {"ft3 or centifoot", "cft"},
    {"in3 or 0.01 u.in", "cu in"},
    {"ft3 or 0.01 u.ft", "cu ft"},
    {"m3 or 0.01 u.m", "cu m"},
    {"1000 Btu or 1e6 Btu", "MBtu, MBTU"},
    {"1000 ft3 or 1e6 ft3", "Mcf"},
    {"1e6 psi or 1e-3 psi", "mpsi"},
    {"kcal or cal", "Cal"},
    {"mol/l or 1e6", "M"},
    {"mm or 1e6", "MM"},
    {"MHz or mHz", "mhz"},
    {"MPa or mPa", "mpa"},
    {"mW or MW", "mw"},
    {"ft.lbf or foot.pound", "ft lb, ft lbs, ftlb"},
    {"lbf.ft or pound.foot", "lb ft, lbft"},
    {"in.lbf or inch.pound", "in lb, in lbs, inlb"},
    {"lbf.in or pound.inch", "lb in"},
    {"lbf/in or pound/inch", "lb/in"},
    {"lbf/in2 or pound/inch2", "lb/in2, lbs/in2"},
    {"lbf/ft2 or pound/foot2", "lb/ft2"},
    {"kgf.cm or kilogram.cm", "kg cm"},
    {"kgf/cm2 or kilogram/cm2", "kg/cm2"},
    {"kgf/mm2 or kilogram/mm2", "kg/mm2"},
    {"degC or degree.coulomb", "degree C, degrees C, deg C, \u00b0 C"},
    {"degF or degree.farad", "degree F, degrees F, deg F, \u00b0 F"},
    {"K or degree.kelvin", "degree K, degrees K, deg K"},
    {"degC or degree.kelvin",
     "degree Celsius, degrees Celsius, degree celsius, degrees celsius, deg Celsius"},
    {"degF or degree.degR", "degree Fahrenheit, degrees Fahrenheit"},
};
constexpr Spellings kAmbiguousInCompound[] = {
    {"m.K or millikelvin", "mK"},
    {"m.degC or millikelvin", "m\u00b0C, mdegC"},
    {"degC or coulomb", "C"},
};
constexpr Spellings kAmbiguousBelowLine[] = {
    {"m.degC or millicoulomb", "mC"},
    {"degF or farad", "F"},
};
constexpr Spellings kGauge[] = {
    {"bar", "barg"}, {"mbar", "mbarg"},     {"kPa", "kPag"},
    {"MPa", "MPag"}, {"psi", "psig, PSIG"}, {"at", "atu"},
};
constexpr Spellings kConditions[] = {
    {"m3", "Nm3, Sm3"},           {"l", "Nl, NL"}, {"cm3/min", "sccm"},
    {"l/min", "slm, slpm, SLPM"}, {"ft3", "scf"},  {"ft3/min", "scfm"},
};
constexpr Spellings kRest[] = {
    {"kW", "kWp, kWe, kWel, kWth"},
    {"W", "Wp"},
    {"MW", "MWp, MWe, MWth"},
    {"V", "Vrms, Vpp, Vdc, VDC, Vac, VAC"},
    {"A", "Arms"},
    {"g", "gCO2"},
    {"kg", "kgCO2"},
    {"t", "tCO2"},
    {"%", "vol%, wt%, mol%, %RH"},
};
constexpr Spellings kDifference[] = {
    {"K", "delta_degC"},
    {"degR", "delta_degF"},
};
constexpr Spellings kNoSymbol[] = {
    {"mile/h", "MPH"},
    {"km/h", "KPH"},
    {"inch", "''"},
};
constexpr Spellings kNoUnit[] = {
    {"1", "n/a, none, None"},
};
constexpr Spellings kRoots[] = {
    {{}, "sqrt, \u221aHz, rtHz, \u221am"},
};
constexpr Spellings kCurrencies[] = {
    {{},
     "\u20ac, $, \u00a3, \u00a5, US$, k\u20ac, M\u20ac, k$, M$, EUR, kEUR, MEUR, TEUR, USD, kUSD, MUSD, GBP, "
     "CHF, JPY, CNY, INR, KRW, SEK, NOK, DKK, PLN, CZK, CAD, AUD, BRL, MXN, ZAR, euro, euros, Euro, dollar, "
     "dollars, cent, cents"},
};
constexpr Spellings kLogarithms[] = {
    {{}, "dB, dBm, dBV, dBA, dBW, dBi, dBc, dBu, dBZ"},
};

template <std::size_t Count>
void append(std::vector<UnitSpellingRow> &rows, const Spellings (&table)[Count], UnitTreatment treatment,
            std::string_view why = {}) {
  constexpr std::string_view kBetween = ", ";
  for (const Spellings &spellings : table) {
    std::string_view rest = spellings.written;
    while (!rest.empty()) {
      const std::size_t end = std::min(rest.find(kBetween), rest.size());
      rows.push_back({rest.substr(0, end), treatment, spellings.meant, why});
      rest.remove_prefix(std::min(end + kBetween.size(), rest.size()));
    }
  }
}

std::vector<UnitSpellingRow> allRows() {
  std::vector<UnitSpellingRow> rows;
  append(rows, kMeanings, UnitTreatment::Means);
  append(rows, kProducts, UnitTreatment::Product);
  append(rows, kAmbiguous, UnitTreatment::Ambiguous);
  append(rows, kAmbiguousInCompound, UnitTreatment::AmbiguousInCompound);
  append(rows, kAmbiguousBelowLine, UnitTreatment::AmbiguousBelowLine);
  const auto refuse = [&rows](const auto &spellings, std::string_view why) {
    append(rows, spellings, UnitTreatment::Refused, why);
  };
  refuse(kGauge, "it counts from the pressure of the surroundings; name that in the label");
  refuse(kConditions, "its amount depends on reference conditions; name them in the label");
  refuse(kRest, "it says more than the unit; name the rest in the label");
  refuse(kDifference, "a difference of temperatures has a unit without an offset");
  refuse(kNoSymbol, "it is no symbol of a unit");
  refuse(kNoUnit, "it is no unit; leave the unit out");
  refuse(kRoots, "powers are whole numbers; declare the square of the value");
  refuse(kCurrencies, "a currency is no unit of measurement; declare a plain number and name the currency in "
                      "its label");
  refuse(kLogarithms, "decibels are a logarithmic ratio; declare a plain number and name them in its label");
  return rows;
}

} // namespace

bool isAmbiguous(const UnitSpellingRow &row) {
  return row.treatment == UnitTreatment::Ambiguous || row.treatment == UnitTreatment::AmbiguousInCompound ||
         row.treatment == UnitTreatment::AmbiguousBelowLine;
}

std::vector<std::string> readingsOf(const UnitSpellingRow &row) {
  constexpr std::string_view kBetween = " or ";
  std::vector<std::string> readings;
  std::string_view rest = row.meant;
  for (std::size_t end = rest.find(kBetween); end != std::string_view::npos; end = rest.find(kBetween)) {
    readings.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end + kBetween.size());
  }
  readings.emplace_back(rest);
  return readings;
}

const std::vector<UnitSpellingRow> &UnitSpellings::rows() {
  static const std::vector<UnitSpellingRow> table = allRows();
  return table;
}

const UnitSpellingRow *UnitSpellings::find(std::string_view written) {
  static const auto byWritten = [] {
    std::unordered_map<std::string_view, const UnitSpellingRow *> map;
    for (const UnitSpellingRow &row : rows()) {
      map.emplace(row.written, &row);
    }
    return map;
  }();
  const auto found = byWritten.find(written);
  return found == byWritten.end() ? nullptr : found->second;
}

} // namespace EmbeddedHost
