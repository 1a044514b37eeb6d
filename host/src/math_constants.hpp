#pragma once
// Constants of the maths functions to 107 bits and more: each pair is the double nearest to the constant, and the
// one nearest to what is left. The test of the functions would find a wrong digit in any of them.

#include "double_double.hpp"

#include <cstdint>

namespace host::maths
{
constexpr dd kPi = {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53};
constexpr dd kHalfPi = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54};
constexpr double kQuarterPi = 0x1.921fb54442d18p-1;
constexpr double kThreeQuarterPi = 0x1.2d97c7f3321d2p+1;

// log(2) in three parts. The first two have 42 bits, so that their products with an exponent are exact.
constexpr double kLog2High = 0x1.62e42fefa3800p-1;
constexpr double kLog2Middle = 0x1.ef35793c76000p-45;
constexpr double kLog2Low = 0x1.cc01f97b57a08p-87;
constexpr dd kLog2 = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};
constexpr dd kOneByLog10 = {0x1.bcb7b1526e50ep-2, 0x1.95355baaafad3p-57}; // 1 / log(10)

constexpr int kLastFactorial = 30;
// 1/n! at place n - 2.
constexpr dd kOneByFactorial[kLastFactorial - 1] = {
    {0x1.0000000000000p-1, 0x0.0p+0},                 // 1/2!
    {0x1.5555555555555p-3, 0x1.5555555555555p-57},    // 1/3!
    {0x1.5555555555555p-5, 0x1.5555555555555p-59},    // 1/4!
    {0x1.1111111111111p-7, 0x1.1111111111111p-63},    // 1/5!
    {0x1.6c16c16c16c17p-10, -0x1.f49f49f49f49fp-65},  // 1/6!
    {0x1.a01a01a01a01ap-13, 0x1.a01a01a01a01ap-73},   // 1/7!
    {0x1.a01a01a01a01ap-16, 0x1.a01a01a01a01ap-76},   // 1/8!
    {0x1.71de3a556c734p-19, -0x1.c154f8ddc6c00p-73},  // 1/9!
    {0x1.27e4fb7789f5cp-22, 0x1.cbbc05b4fa99ap-76},   // 1/10!
    {0x1.ae64567f544e4p-26, -0x1.c062e06d1f209p-80},  // 1/11!
    {0x1.1eed8eff8d898p-29, -0x1.2aec959e14c06p-83},  // 1/12!
    {0x1.6124613a86d09p-33, 0x1.f28e0cc748ebep-87},   // 1/13!
    {0x1.93974a8c07c9dp-37, 0x1.05d6f8a2efd1fp-92},   // 1/14!
    {0x1.ae7f3e733b81fp-41, 0x1.1d8656b0ee8cbp-97},   // 1/15!
    {0x1.ae7f3e733b81fp-45, 0x1.1d8656b0ee8cbp-101},  // 1/16!
    {0x1.952c77030ad4ap-49, 0x1.ac981465ddc6cp-103},  // 1/17!
    {0x1.6827863b97d97p-53, 0x1.eec01221a8b0bp-107},  // 1/18!
    {0x1.2f49b46814157p-57, 0x1.2650f61dbdcb4p-112},  // 1/19!
    {0x1.e542ba4020225p-62, 0x1.ea72b4afe3c2fp-120},  // 1/20!
    {0x1.71b8ef6dcf572p-66, -0x1.d043ae40c4647p-120}, // 1/21!
    {0x1.0ce396db7f853p-70, -0x1.aebcdbd20331cp-124}, // 1/22!
    {0x1.761b41316381ap-75, -0x1.3423c7d91404fp-130}, // 1/23!
    {0x1.f2cf01972f578p-80, -0x1.9ada5fcc1ab14p-135}, // 1/24!
    {0x1.3f3ccdd165fa9p-84, -0x1.58ddadf344487p-139}, // 1/25!
    {0x1.88e85fc6a4e5ap-89, -0x1.71c37ebd16540p-143}, // 1/26!
    {0x1.d1ab1c2dccea3p-94, 0x1.054d0c78aea14p-149},  // 1/27!
    {0x1.0a18a2635085dp-98, 0x1.b9e2e28e1aa54p-153},  // 1/28!
    {0x1.259f98b4358adp-103, 0x1.eaf8c39dd9bc5p-157}, // 1/29!
    {0x1.3932c5047d60ep-108, 0x1.832b7b530a627p-162}, // 1/30!
};

constexpr int kOddReciprocals = 22;
// 1/(2k + 3) at place k.
constexpr dd kOneByOdd[kOddReciprocals] = {
    {0x1.5555555555555p-2, 0x1.5555555555555p-56},  // 1/3
    {0x1.999999999999ap-3, -0x1.999999999999ap-57}, // 1/5
    {0x1.2492492492492p-3, 0x1.2492492492492p-57},  // 1/7
    {0x1.c71c71c71c71cp-4, 0x1.c71c71c71c71cp-58},  // 1/9
    {0x1.745d1745d1746p-4, -0x1.745d1745d1746p-59}, // 1/11
    {0x1.3b13b13b13b14p-4, -0x1.3b13b13b13b14p-58}, // 1/13
    {0x1.1111111111111p-4, 0x1.1111111111111p-60},  // 1/15
    {0x1.e1e1e1e1e1e1ep-5, 0x1.e1e1e1e1e1e1ep-61},  // 1/17
    {0x1.af286bca1af28p-5, 0x1.af286bca1af28p-59},  // 1/19
    {0x1.8618618618618p-5, 0x1.8618618618618p-59},  // 1/21
    {0x1.642c8590b2164p-5, 0x1.642c8590b2164p-60},  // 1/23
    {0x1.47ae147ae147bp-5, -0x1.eb851eb851eb8p-61}, // 1/25
    {0x1.2f684bda12f68p-5, 0x1.2f684bda12f68p-59},  // 1/27
    {0x1.1a7b9611a7b96p-5, 0x1.1a7b9611a7b96p-61},  // 1/29
    {0x1.0842108421084p-5, 0x1.0842108421084p-60},  // 1/31
    {0x1.f07c1f07c1f08p-6, -0x1.f07c1f07c1f08p-61}, // 1/33
    {0x1.d41d41d41d41dp-6, 0x1.0750750750750p-60},  // 1/35
    {0x1.bacf914c1bad0p-6, -0x1.bacf914c1bad0p-60}, // 1/37
    {0x1.a41a41a41a41ap-6, 0x1.0690690690690p-60},  // 1/39
    {0x1.8f9c18f9c18fap-6, -0x1.f3831f3831f38p-61}, // 1/41
    {0x1.7d05f417d05f4p-6, 0x1.7d05f417d05f4p-62},  // 1/43
    {0x1.6c16c16c16c17p-6, -0x1.f49f49f49f49fp-61}, // 1/45
};

// atan(j/16) at place j.
constexpr dd kAtanOfSixteenths[17] = {
    {0.0, 0.0},                                     // 0
    {0x1.ff55bb72cfdeap-5, -0x1.c934d86d23f1dp-60}, // 1/16
    {0x1.fd5ba9aac2f6ep-4, -0x1.cd37686760c17p-59}, // 2/16
    {0x1.7b97b4bce5b02p-3, 0x1.347b0b4f881cap-58},  // 3/16
    {0x1.f5b75f92c80ddp-3, 0x1.8ab6e3cf7afbdp-57},  // 4/16
    {0x1.362773707ebccp-2, -0x1.963a544b672d8p-57}, // 5/16
    {0x1.6f61941e4def1p-2, -0x1.c63aae6f6e918p-56}, // 6/16
    {0x1.a64eec3cc23fdp-2, -0x1.24dec1b50b7ffp-56}, // 7/16
    {0x1.dac670561bb4fp-2, 0x1.a2b7f222f65e2p-56},  // 8/16
    {0x1.0657e94db30d0p-1, -0x1.d5b495f6349e6p-56}, // 9/16
    {0x1.1e00babdefeb4p-1, -0x1.928df287a668fp-58}, // 10/16
    {0x1.345f01cce37bbp-1, 0x1.1021137c71102p-55},  // 11/16
    {0x1.4978fa3269ee1p-1, 0x1.2419a87f2a458p-56},  // 12/16
    {0x1.5d58987169b18p-1, 0x1.0028e4bc5e7cap-57},  // 13/16
    {0x1.700a7c5784634p-1, -0x1.8c34d25aadef6p-56}, // 14/16
    {0x1.819d0b7158a4dp-1, -0x1.bf76229d3b917p-56}, // 15/16
    {0x1.921fb54442d18p-1, 0x1.1a62633145c07p-55},  // 16/16
};

// The bits of 2/pi after the binary point, 32 in each word: enough for the largest double.
constexpr std::uint32_t kTwoByPiBits[44] = {
    0xA2F9836E, 0x4E441529, 0xFC2757D1, 0xF534DDC0, 0xDB629599, 0x3C439041, 0xFE5163AB, 0xDEBBC561, 0xB7246E3A,
    0x424DD2E0, 0x06492EEA, 0x09D1921C, 0xFE1DEB1C, 0xB129A73E, 0xE88235F5, 0x2EBB4484, 0xE99C7026, 0xB45F7E41,
    0x3991D639, 0x835339F4, 0x9C845F8B, 0xBDF9283B, 0x1FF897FF, 0xDE05980F, 0xEF2F118B, 0x5A0A6D1F, 0x6D367ECF,
    0x27CB09B7, 0x4F463F66, 0x9E5FEA2D, 0x7527BAC7, 0xEBE5F17B, 0x3D0739F7, 0x8A5292EA, 0x6BFB5FB1, 0x1F8D5D08,
    0x56033046, 0xFC7B6BAB, 0xF0CFBC20, 0x9AF4361D, 0xA9E39161, 0x5EE61B08, 0x6599855F, 0x14A06840,
};
} // namespace host::maths
