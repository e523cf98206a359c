#include "benchmarks/expression/NativeExpressions.h"

#include <cmath>
#include <map>
#include <stdexcept>

namespace ExpressionBenchmark {

namespace {

double smaller(double a, double b) {
  return b < a ? b : a;
}

double larger(double a, double b) {
  return b > a ? b : a;
}

double clamped(double x, double low, double high) {
  if (x > high) {
    return high;
  }
  return x < low ? low : x;
}

struct E01Axpb {
  template <class Values> static double value(const Values &x) { return x[0] * x[1] + 2.0; }
};

struct E02Horner5 {
  template <class Values> static double value(const Values &x) {
    return ((((1.5 * x[0] + 2.25) * x[0] - 3.5) * x[0] + 0.75) * x[0] - 1.25) * x[0] + 4.0;
  }
};

struct E03Quad3 {
  template <class Values> static double value(const Values &x) {
    return 1.0 + 2.0 * x[0] - 3.0 * x[1] + 0.5 * x[2] + 4.0 * x[0] * x[0] + 5.0 * x[0] * x[1] +
           6.0 * x[1] * x[1] - 0.25 * x[1] * x[2] + 0.125 * x[2] * x[2] + 7.0 * x[0] * x[2];
  }
};

struct E04Penalty {
  template <class Values> static double value(const Values &x) {
    return (x[0] > x[1]) ? x[2] * (x[0] - x[1]) * (x[0] - x[1]) : 0.0;
  }
};

struct E05Mass4pen {
  template <class Values> static double value(const Values &x) {
    return 3.2 * x[0] + 0.8 * x[1] + ((x[2] > 12.5) ? 10.0 * (x[2] - 12.5) * (x[2] - 12.5) : 0.0) +
           ((x[3] < 9.5) ? 1000.0 * (9.5 - x[3]) : 0.0) +
           ((x[4] > x[5]) ? x[6] * (x[4] - x[5]) * (x[4] - x[5]) : 0.0) +
           ((x[7] >= 10.0) ? 50.0 * x[7] : 0.0);
  }
};

struct E06Mathmix {
  template <class Values> static double value(const Values &x) {
    return std::sqrt(x[0] * x[0] + x[1] * x[1]) + std::exp((-0.5) * x[2]) * std::log(x[3] + 1.0) +
           std::pow(x[4], 1.7);
  }
};

struct E07Trig {
  template <class Values> static double value(const Values &x) {
    return 2.0 * std::sin(x[0]) * std::cos(x[1]) + std::atan2(x[2], x[3]) - std::tan(0.05 * x[0]);
  }
};

struct E08Clamp {
  template <class Values> static double value(const Values &x) {
    return smaller(larger(x[0] - 5.0, 0.0), 10.0) * x[1] + clamped(x[2], 4.0, 16.0) * 2.5 +
           std::fabs(x[3] - x[4]);
  }
};

struct E09Nested {
  template <class Values> static double value(const Values &x) {
    return (x[0] < 10.0) ? ((x[1] < 5.0) ? x[2] + 1.0 : x[2] * 2.0)
                         : ((x[1] < 5.0) ? x[3] - 1.0 : ((x[4] < 6.0) ? 0.0 : x[3] / 2.0));
  }
};

struct E10Tier8 {
  template <class Values> static double value(const Values &x) {
    return x[1] * ((x[0] < 1.0)
                       ? 5.0
                       : ((x[0] < 3.0)
                              ? 4.5
                              : ((x[0] < 6.0)
                                     ? 4.0
                                     : ((x[0] < 9.0)
                                            ? 3.5
                                            : ((x[0] < 12.0)
                                                   ? 3.0
                                                   : ((x[0] < 15.0) ? 2.5 : ((x[0] < 18.0) ? 2.0 : 1.5)))))));
  }
};

struct E11Logic {
  template <class Values> static double value(const Values &x) {
    return (((x[0] > 5.0) && (x[1] < 15.0)) || ((x[2] >= 3.0) && (x[3] != x[0]))) ? x[4] : x[5] + 100.0;
  }
};

struct E12Wsum20 {
  template <class Values> static double value(const Values &x) {
    return 0.1 * x[0] + 0.47 * x[1] + 0.84 * x[2] + 1.21 * x[3] + 1.58 * x[4] + 1.95 * x[5] + 2.32 * x[6] +
           2.69 * x[7] + 3.06 * x[8] + 3.43 * x[9] + 3.8 * x[10] + 4.17 * x[11] + 4.54 * x[12] +
           4.91 * x[13] + 5.28 * x[14] + 5.65 * x[15] + 6.02 * x[16] + 6.39 * x[17] + 6.76 * x[18] +
           7.13 * x[19];
  }
};

struct E13Goal20 {
  template <class Values> static double value(const Values &x) {
    return std::sqrt((x[0] - 1.0) * (x[0] - 1.0) / 2.0 + (x[1] - 1.9) * (x[1] - 1.9) / 2.25 +
                     (x[2] - 2.8) * (x[2] - 2.8) / 2.5 + (x[3] - 3.7) * (x[3] - 3.7) / 2.75 +
                     (x[4] - 4.6) * (x[4] - 4.6) / 3.0 + (x[5] - 5.5) * (x[5] - 5.5) / 3.25 +
                     (x[6] - 6.4) * (x[6] - 6.4) / 3.5 + (x[7] - 7.3) * (x[7] - 7.3) / 3.75 +
                     (x[8] - 8.2) * (x[8] - 8.2) / 4.0 + (x[9] - 9.1) * (x[9] - 9.1) / 4.25 +
                     (x[10] - 10.0) * (x[10] - 10.0) / 4.5 + (x[11] - 10.9) * (x[11] - 10.9) / 4.75 +
                     (x[12] - 11.8) * (x[12] - 11.8) / 5.0 + (x[13] - 12.7) * (x[13] - 12.7) / 5.25 +
                     (x[14] - 13.6) * (x[14] - 13.6) / 5.5 + (x[15] - 14.5) * (x[15] - 14.5) / 5.75 +
                     (x[16] - 15.4) * (x[16] - 15.4) / 6.0 + (x[17] - 16.3) * (x[17] - 16.3) / 6.25 +
                     (x[18] - 17.2) * (x[18] - 17.2) / 6.5 + (x[19] - 18.1) * (x[19] - 18.1) / 6.75);
  }
};

struct E14Sum200 {
  template <class Values> static double value(const Values &x) {
    return x[0] + x[1] + x[2] + x[3] + x[4] + x[5] + x[6] + x[7] + x[8] + x[9] + x[10] + x[11] + x[12] +
           x[13] + x[14] + x[15] + x[16] + x[17] + x[18] + x[19] + x[20] + x[21] + x[22] + x[23] + x[24] +
           x[25] + x[26] + x[27] + x[28] + x[29] + x[30] + x[31] + x[32] + x[33] + x[34] + x[35] + x[36] +
           x[37] + x[38] + x[39] + x[40] + x[41] + x[42] + x[43] + x[44] + x[45] + x[46] + x[47] + x[48] +
           x[49] + x[50] + x[51] + x[52] + x[53] + x[54] + x[55] + x[56] + x[57] + x[58] + x[59] + x[60] +
           x[61] + x[62] + x[63] + x[64] + x[65] + x[66] + x[67] + x[68] + x[69] + x[70] + x[71] + x[72] +
           x[73] + x[74] + x[75] + x[76] + x[77] + x[78] + x[79] + x[80] + x[81] + x[82] + x[83] + x[84] +
           x[85] + x[86] + x[87] + x[88] + x[89] + x[90] + x[91] + x[92] + x[93] + x[94] + x[95] + x[96] +
           x[97] + x[98] + x[99] + x[100] + x[101] + x[102] + x[103] + x[104] + x[105] + x[106] + x[107] +
           x[108] + x[109] + x[110] + x[111] + x[112] + x[113] + x[114] + x[115] + x[116] + x[117] + x[118] +
           x[119] + x[120] + x[121] + x[122] + x[123] + x[124] + x[125] + x[126] + x[127] + x[128] + x[129] +
           x[130] + x[131] + x[132] + x[133] + x[134] + x[135] + x[136] + x[137] + x[138] + x[139] + x[140] +
           x[141] + x[142] + x[143] + x[144] + x[145] + x[146] + x[147] + x[148] + x[149] + x[150] + x[151] +
           x[152] + x[153] + x[154] + x[155] + x[156] + x[157] + x[158] + x[159] + x[160] + x[161] + x[162] +
           x[163] + x[164] + x[165] + x[166] + x[167] + x[168] + x[169] + x[170] + x[171] + x[172] + x[173] +
           x[174] + x[175] + x[176] + x[177] + x[178] + x[179] + x[180] + x[181] + x[182] + x[183] + x[184] +
           x[185] + x[186] + x[187] + x[188] + x[189] + x[190] + x[191] + x[192] + x[193] + x[194] + x[195] +
           x[196] + x[197] + x[198] + x[199];
  }
};

struct E15Poly200 {
  template <class Values> static double value(const Values &x) {
    return 0.5 * x[0] * x[3] + 0.513 * x[1] * x[10] + 0.526 * x[2] * x[17] + 0.539 * x[3] * x[4] +
           0.552 * x[4] * x[11] + 0.565 * x[5] * x[18] + 0.578 * x[6] * x[5] + 0.591 * x[7] * x[12] +
           0.604 * x[8] * x[19] + 0.617 * x[9] * x[6] + 0.63 * x[10] * x[13] + 0.643 * x[11] * x[0] +
           0.656 * x[12] * x[7] + 0.669 * x[13] * x[14] + 0.682 * x[14] * x[1] + 0.695 * x[15] * x[8] +
           0.708 * x[16] * x[15] + 0.721 * x[17] * x[2] + 0.734 * x[18] * x[9] + 0.747 * x[19] * x[16] +
           0.76 * x[0] * x[3] + 0.773 * x[1] * x[10] + 0.786 * x[2] * x[17] + 0.799 * x[3] * x[4] +
           0.812 * x[4] * x[11] + 0.825 * x[5] * x[18] + 0.838 * x[6] * x[5] + 0.851 * x[7] * x[12] +
           0.864 * x[8] * x[19] + 0.877 * x[9] * x[6] + 0.89 * x[10] * x[13] + 0.903 * x[11] * x[0] +
           0.916 * x[12] * x[7] + 0.929 * x[13] * x[14] + 0.942 * x[14] * x[1] + 0.955 * x[15] * x[8] +
           0.968 * x[16] * x[15] + 0.981 * x[17] * x[2] + 0.994 * x[18] * x[9] + 1.007 * x[19] * x[16] +
           1.02 * x[0] * x[3] + 1.033 * x[1] * x[10] + 1.046 * x[2] * x[17] + 1.059 * x[3] * x[4] +
           1.072 * x[4] * x[11] + 1.085 * x[5] * x[18] + 1.098 * x[6] * x[5] + 1.111 * x[7] * x[12] +
           1.124 * x[8] * x[19] + 1.137 * x[9] * x[6] + 1.15 * x[10] * x[13] + 1.163 * x[11] * x[0] +
           1.176 * x[12] * x[7] + 1.189 * x[13] * x[14] + 1.202 * x[14] * x[1] + 1.215 * x[15] * x[8] +
           1.228 * x[16] * x[15] + 1.241 * x[17] * x[2] + 1.254 * x[18] * x[9] + 1.267 * x[19] * x[16] +
           1.28 * x[0] * x[3] + 1.293 * x[1] * x[10] + 1.306 * x[2] * x[17] + 1.319 * x[3] * x[4] +
           1.332 * x[4] * x[11] + 1.345 * x[5] * x[18] + 1.358 * x[6] * x[5] + 1.371 * x[7] * x[12] +
           1.384 * x[8] * x[19] + 1.397 * x[9] * x[6] + 1.41 * x[10] * x[13] + 1.423 * x[11] * x[0] +
           1.436 * x[12] * x[7] + 1.449 * x[13] * x[14] + 1.462 * x[14] * x[1] + 1.475 * x[15] * x[8] +
           1.488 * x[16] * x[15] + 1.501 * x[17] * x[2] + 1.514 * x[18] * x[9] + 1.527 * x[19] * x[16] +
           1.54 * x[0] * x[3] + 1.553 * x[1] * x[10] + 1.566 * x[2] * x[17] + 1.579 * x[3] * x[4] +
           1.592 * x[4] * x[11] + 1.605 * x[5] * x[18] + 1.618 * x[6] * x[5] + 1.631 * x[7] * x[12] +
           1.644 * x[8] * x[19] + 1.657 * x[9] * x[6] + 1.67 * x[10] * x[13] + 1.683 * x[11] * x[0] +
           1.696 * x[12] * x[7] + 1.709 * x[13] * x[14] + 1.722 * x[14] * x[1] + 1.735 * x[15] * x[8] +
           1.748 * x[16] * x[15] + 1.761 * x[17] * x[2] + 1.774 * x[18] * x[9] + 1.787 * x[19] * x[16] +
           1.8 * x[0] * x[3] + 1.813 * x[1] * x[10] + 1.826 * x[2] * x[17] + 1.839 * x[3] * x[4] +
           1.852 * x[4] * x[11] + 1.865 * x[5] * x[18] + 1.878 * x[6] * x[5] + 1.891 * x[7] * x[12] +
           1.904 * x[8] * x[19] + 1.917 * x[9] * x[6] + 1.93 * x[10] * x[13] + 1.943 * x[11] * x[0] +
           1.956 * x[12] * x[7] + 1.969 * x[13] * x[14] + 1.982 * x[14] * x[1] + 1.995 * x[15] * x[8] +
           2.008 * x[16] * x[15] + 2.021 * x[17] * x[2] + 2.034 * x[18] * x[9] + 2.047 * x[19] * x[16] +
           2.06 * x[0] * x[3] + 2.073 * x[1] * x[10] + 2.086 * x[2] * x[17] + 2.099 * x[3] * x[4] +
           2.112 * x[4] * x[11] + 2.125 * x[5] * x[18] + 2.138 * x[6] * x[5] + 2.151 * x[7] * x[12] +
           2.164 * x[8] * x[19] + 2.177 * x[9] * x[6] + 2.19 * x[10] * x[13] + 2.203 * x[11] * x[0] +
           2.216 * x[12] * x[7] + 2.229 * x[13] * x[14] + 2.242 * x[14] * x[1] + 2.255 * x[15] * x[8] +
           2.268 * x[16] * x[15] + 2.281 * x[17] * x[2] + 2.294 * x[18] * x[9] + 2.307 * x[19] * x[16] +
           2.32 * x[0] * x[3] + 2.333 * x[1] * x[10] + 2.346 * x[2] * x[17] + 2.359 * x[3] * x[4] +
           2.372 * x[4] * x[11] + 2.385 * x[5] * x[18] + 2.398 * x[6] * x[5] + 2.411 * x[7] * x[12] +
           2.424 * x[8] * x[19] + 2.437 * x[9] * x[6] + 2.45 * x[10] * x[13] + 2.463 * x[11] * x[0] +
           2.476 * x[12] * x[7] + 2.489 * x[13] * x[14] + 2.502 * x[14] * x[1] + 2.515 * x[15] * x[8] +
           2.528 * x[16] * x[15] + 2.541 * x[17] * x[2] + 2.554 * x[18] * x[9] + 2.567 * x[19] * x[16] +
           2.58 * x[0] * x[3] + 2.593 * x[1] * x[10] + 2.606 * x[2] * x[17] + 2.619 * x[3] * x[4] +
           2.632 * x[4] * x[11] + 2.645 * x[5] * x[18] + 2.658 * x[6] * x[5] + 2.671 * x[7] * x[12] +
           2.684 * x[8] * x[19] + 2.697 * x[9] * x[6] + 2.71 * x[10] * x[13] + 2.723 * x[11] * x[0] +
           2.736 * x[12] * x[7] + 2.749 * x[13] * x[14] + 2.762 * x[14] * x[1] + 2.775 * x[15] * x[8] +
           2.788 * x[16] * x[15] + 2.801 * x[17] * x[2] + 2.814 * x[18] * x[9] + 2.827 * x[19] * x[16] +
           2.84 * x[0] * x[3] + 2.853 * x[1] * x[10] + 2.866 * x[2] * x[17] + 2.879 * x[3] * x[4] +
           2.892 * x[4] * x[11] + 2.905 * x[5] * x[18] + 2.918 * x[6] * x[5] + 2.931 * x[7] * x[12] +
           2.944 * x[8] * x[19] + 2.957 * x[9] * x[6] + 2.97 * x[10] * x[13] + 2.983 * x[11] * x[0] +
           2.996 * x[12] * x[7] + 3.009 * x[13] * x[14] + 3.022 * x[14] * x[1] + 3.035 * x[15] * x[8] +
           3.048 * x[16] * x[15] + 3.061 * x[17] * x[2] + 3.074 * x[18] * x[9] + 3.087 * x[19] * x[16];
  }
};

struct E16Mix100 {
  template <class Values> static double value(const Values &x) {
    return 0.5 * std::sqrt(x[0] + 1.0) + ((x[1] > 6.0) ? (x[1] - 6.0) * x[3] : 0.25 * x[6]) +
           larger(x[2], x[4]) / 5.0 + 0.26 * x[3] * (x[4] - 3.5) + 0.54 * std::sqrt(x[4] + 5.0) +
           ((x[5] > 10.0) ? (x[5] - 10.0) * x[15] : 0.25 * x[6]) + larger(x[6], x[8]) / 4.0 +
           0.34 * x[7] * (x[16] - 0.5) + 0.58 * std::sqrt(x[8] + 9.0) +
           ((x[9] > 5.0) ? (x[9] - 5.0) * x[7] : 0.25 * x[6]) + larger(x[10], x[12]) / 3.0 +
           0.42 * x[11] * (x[8] - 4.5) + 0.62 * std::sqrt(x[12] + 13.0) +
           ((x[13] > 9.0) ? (x[13] - 9.0) * x[19] : 0.25 * x[6]) + larger(x[14], x[16]) / 7.0 +
           0.5 * x[15] * (x[0] - 1.5) + 0.66 * std::sqrt(x[16] + 17.0) +
           ((x[17] > 13.0) ? (x[17] - 13.0) * x[11] : 0.25 * x[6]) + larger(x[18], x[0]) / 6.0 +
           0.58 * x[19] * (x[12] - 5.5) + 0.7 * std::sqrt(x[0] + 21.0) +
           ((x[1] > 8.0) ? (x[1] - 8.0) * x[3] : 0.25 * x[6]) + larger(x[2], x[4]) / 5.0 +
           0.66 * x[3] * (x[4] - 2.5) + 0.74 * std::sqrt(x[4] + 25.0) +
           ((x[5] > 12.0) ? (x[5] - 12.0) * x[15] : 0.25 * x[6]) + larger(x[6], x[8]) / 4.0 +
           0.74 * x[7] * (x[16] - 6.5) + 0.78 * std::sqrt(x[8] + 29.0) +
           ((x[9] > 7.0) ? (x[9] - 7.0) * x[7] : 0.25 * x[6]) + larger(x[10], x[12]) / 3.0 +
           0.82 * x[11] * (x[8] - 3.5) + 0.82 * std::sqrt(x[12] + 33.0) +
           ((x[13] > 11.0) ? (x[13] - 11.0) * x[19] : 0.25 * x[6]) + larger(x[14], x[16]) / 7.0 +
           0.9 * x[15] * (x[0] - 0.5) + 0.86 * std::sqrt(x[16] + 37.0) +
           ((x[17] > 6.0) ? (x[17] - 6.0) * x[11] : 0.25 * x[6]) + larger(x[18], x[0]) / 6.0 +
           0.98 * x[19] * (x[12] - 4.5) + 0.9 * std::sqrt(x[0] + 41.0) +
           ((x[1] > 10.0) ? (x[1] - 10.0) * x[3] : 0.25 * x[6]) + larger(x[2], x[4]) / 5.0 +
           1.06 * x[3] * (x[4] - 1.5) + 0.94 * std::sqrt(x[4] + 45.0) +
           ((x[5] > 5.0) ? (x[5] - 5.0) * x[15] : 0.25 * x[6]) + larger(x[6], x[8]) / 4.0 +
           1.14 * x[7] * (x[16] - 5.5) + 0.98 * std::sqrt(x[8] + 49.0) +
           ((x[9] > 9.0) ? (x[9] - 9.0) * x[7] : 0.25 * x[6]) + larger(x[10], x[12]) / 3.0 +
           1.22 * x[11] * (x[8] - 2.5) + 1.02 * std::sqrt(x[12] + 53.0) +
           ((x[13] > 13.0) ? (x[13] - 13.0) * x[19] : 0.25 * x[6]) + larger(x[14], x[16]) / 7.0 +
           1.3 * x[15] * (x[0] - 6.5) + 1.06 * std::sqrt(x[16] + 57.0) +
           ((x[17] > 8.0) ? (x[17] - 8.0) * x[11] : 0.25 * x[6]) + larger(x[18], x[0]) / 6.0 +
           1.38 * x[19] * (x[12] - 3.5) + 1.1 * std::sqrt(x[0] + 61.0) +
           ((x[1] > 12.0) ? (x[1] - 12.0) * x[3] : 0.25 * x[6]) + larger(x[2], x[4]) / 5.0 +
           1.46 * x[3] * (x[4] - 0.5) + 1.14 * std::sqrt(x[4] + 65.0) +
           ((x[5] > 7.0) ? (x[5] - 7.0) * x[15] : 0.25 * x[6]) + larger(x[6], x[8]) / 4.0 +
           1.54 * x[7] * (x[16] - 4.5) + 1.18 * std::sqrt(x[8] + 69.0) +
           ((x[9] > 11.0) ? (x[9] - 11.0) * x[7] : 0.25 * x[6]) + larger(x[10], x[12]) / 3.0 +
           1.62 * x[11] * (x[8] - 1.5) + 1.22 * std::sqrt(x[12] + 73.0) +
           ((x[13] > 6.0) ? (x[13] - 6.0) * x[19] : 0.25 * x[6]) + larger(x[14], x[16]) / 7.0 +
           1.7 * x[15] * (x[0] - 5.5) + 1.26 * std::sqrt(x[16] + 77.0) +
           ((x[17] > 10.0) ? (x[17] - 10.0) * x[11] : 0.25 * x[6]) + larger(x[18], x[0]) / 6.0 +
           1.78 * x[19] * (x[12] - 2.5) + 1.3 * std::sqrt(x[0] + 81.0) +
           ((x[1] > 5.0) ? (x[1] - 5.0) * x[3] : 0.25 * x[6]) + larger(x[2], x[4]) / 5.0 +
           1.86 * x[3] * (x[4] - 6.5) + 1.34 * std::sqrt(x[4] + 85.0) +
           ((x[5] > 9.0) ? (x[5] - 9.0) * x[15] : 0.25 * x[6]) + larger(x[6], x[8]) / 4.0 +
           1.94 * x[7] * (x[16] - 3.5) + 1.38 * std::sqrt(x[8] + 89.0) +
           ((x[9] > 13.0) ? (x[9] - 13.0) * x[7] : 0.25 * x[6]) + larger(x[10], x[12]) / 3.0 +
           2.02 * x[11] * (x[8] - 0.5) + 1.42 * std::sqrt(x[12] + 93.0) +
           ((x[13] > 8.0) ? (x[13] - 8.0) * x[19] : 0.25 * x[6]) + larger(x[14], x[16]) / 7.0 +
           2.1 * x[15] * (x[0] - 4.5) + 1.46 * std::sqrt(x[16] + 97.0) +
           ((x[17] > 12.0) ? (x[17] - 12.0) * x[11] : 0.25 * x[6]) + larger(x[18], x[0]) / 6.0 +
           2.18 * x[19] * (x[12] - 1.5);
  }
};

// One row of a matrix that is stored by columns.
class Row {
public:
  Row(const double *const *columns, std::size_t row) noexcept : m_columns(columns), m_row(row) {}
  double operator[](std::size_t variable) const noexcept { return m_columns[variable][m_row]; }

private:
  const double *const *m_columns;
  std::size_t m_row;
};

template <class Formula> __attribute__((noinline)) double single(const double *x) {
  return Formula::value(x);
}

template <class Formula>
__attribute__((noinline)) void loop(const double *const *columns, std::size_t rows,
                                    double *__restrict results) {
  for (std::size_t row = 0; row < rows; ++row) {
    results[row] = Formula::value(Row(columns, row));
  }
}

template <class Formula> NativeExpression native() {
  return {&single<Formula>, &loop<Formula>};
}

} // namespace

const NativeExpression &nativeExpression(const std::string &name) {
  static const std::map<std::string, NativeExpression> expressions{
      {"e01_axpb", native<E01Axpb>()},         {"e02_horner5", native<E02Horner5>()},
      {"e03_quad3", native<E03Quad3>()},       {"e04_penalty", native<E04Penalty>()},
      {"e05_mass4pen", native<E05Mass4pen>()}, {"e06_mathmix", native<E06Mathmix>()},
      {"e07_trig", native<E07Trig>()},         {"e08_clamp", native<E08Clamp>()},
      {"e09_nested", native<E09Nested>()},     {"e10_tier8", native<E10Tier8>()},
      {"e11_logic", native<E11Logic>()},       {"e12_wsum20", native<E12Wsum20>()},
      {"e13_goal20", native<E13Goal20>()},     {"e14_sum200", native<E14Sum200>()},
      {"e15_poly200", native<E15Poly200>()},   {"e16_mix100", native<E16Mix100>()},
  };
  const auto found = expressions.find(name);
  if (found == expressions.end()) {
    throw std::runtime_error("There is no native form of the expression " + name);
  }
  return found->second;
}

std::string nativeBuild() {
  return "g++ " __VERSION__ " " OPTSTUDY_NATIVE_OPTIONS;
}

} // namespace ExpressionBenchmark
