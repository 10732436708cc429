// Registry rows of password-based algorithms.
#pragma once

namespace velpki::row {

inline constexpr int kPbeRc4_128 = 144;
inline constexpr int kPbeRc4_40 = 145;
inline constexpr int kPbe3Des = 146;
inline constexpr int kPbeRc2_40 = 149;
inline constexpr int kPbes2 = 161;
inline constexpr int kPbeMd5Rc2 = 169;
inline constexpr int kPbeSha1Rc2 = 68;
inline constexpr int kAes256Cbc = 427;
inline constexpr int kRc2Cbc = 37;
inline constexpr int kSeedCbc = 777;
inline constexpr int kPbeSeed = 780;
inline constexpr int kPbeGpkiSeed = 793;
inline constexpr int kPbeAria = 828;

}  // namespace velpki::row
