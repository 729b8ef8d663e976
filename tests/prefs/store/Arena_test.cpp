#include "prefs/store/Arena.h"

#include <cstdint>
#include <cstring>
#include <vector>

#include "support.h"

namespace vemora::prefs {
namespace {

struct Piece {
  Arena::Ref ref;
  std::size_t size;
  unsigned char fill;
};

/// Pieces of many sizes, each filled with a byte of its own.
std::vector<Piece> Fill(Arena& arena) {
  std::vector<Piece> pieces;
  for (const std::size_t size :
       {1U, 7U, 8U, 9U, 24U, 100U, 1000U, 65535U, 65536U, 65537U, 200000U, 3U}) {
    for (int repetition = 0; repetition < 20; ++repetition) {
      const Piece piece = {arena.Allocate(size), size, static_cast<unsigned char>(pieces.size())};
      std::memset(arena.At(piece.ref), piece.fill, size);
      pieces.push_back(piece);
    }
  }
  return pieces;
}

void ExpectFilled(const Arena& arena, const std::vector<Piece>& pieces) {
  for (const Piece& piece : pieces) {
    const auto* const bytes = static_cast<const unsigned char*>(arena.At(piece.ref));
    EXPECT_EQ(std::vector<unsigned char>(bytes, bytes + piece.size),
              std::vector<unsigned char>(piece.size, piece.fill));
  }
}

TEST(Arena, HandsOutPiecesThatDoNotOverlap) {
  Arena arena;
  const std::vector<Piece> pieces = Fill(arena);
  ExpectFilled(arena, pieces);
}

TEST(Arena, LeavesPiecesWhereTheyAre) {
  Arena arena;
  void* const first = arena.At(arena.Allocate(16));
  Fill(arena);
  EXPECT_EQ(arena.At(0), first);
}

TEST(Arena, AlignsEveryPieceToEightBytes) {
  Arena arena;
  for (const Piece& piece : Fill(arena)) {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(arena.At(piece.ref)) % 8, 0U);
  }
}

TEST(Arena, GivesNothingAnAddressOfItsOwn) {
  Arena arena;
  const Arena::Ref nothing = arena.Allocate(0);
  EXPECT_NE(arena.At(nothing), arena.At(arena.Allocate(0)));
}

TEST(Arena, CountsWhatItHandedOutInWords) {
  Arena arena;
  EXPECT_EQ(arena.Used(), 0U);
  arena.Allocate(1);
  arena.Allocate(17);
  EXPECT_EQ(arena.Used(), 8U + 24U);
}

}  // namespace
}  // namespace vemora::prefs
