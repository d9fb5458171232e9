#include "frame/member_table.h"

namespace {

using member_table::fitsParameters;
using member_table::fitsResult;

template <FixedString Text, class Result, class... Parameters>
constexpr bool kFits = fitsParameters<Text, Parameters...>() && fitsResult<Text, Result>();

constexpr FixedString kAdd = "add(record as ABRecordVXR, byref error as NSErrorVXR) as boolean";

// What a declaration takes and answers, and what it must not be confused with.
static_assert(kFits<"people as ABPersonVXR()", REALobjectArray> && !kFits<"people as ABPersonVXR()", REALobject>);
static_assert(kFits<kAdd, bool, REALobject, REALobject*> && !kFits<kAdd, bool, REALobject, REALobject>);
static_assert(!kFits<kAdd, REALinteger, REALobject, REALobject*> && !kFits<kAdd, bool, REALobject>);
static_assert(kFits<"f(index as UInt32) as variant", REALobject, std::uint32_t>);
static_assert(!kFits<"f(index as UInt32) as variant", REALobject, REALinteger>);
static_assert(kFits<"f(names() as string)", void, REALstringArray> && !kFits<"f(names() as string)", void, REALstring>);
static_assert(kFits<"f(children() as ABSearchElementVXR) as string()", REALstringArray, REALobjectArray>);
static_assert(kFits<"f(data as Memoryblock) as Dictionary()", REALdictionaryArray, REALmemoryBlock>);
static_assert(!kFits<"f(data as Memoryblock)", void, REALobject> && !kFits<"f(moi as ABPersonVXR)", bool, REALobject>);
static_assert(kFits<"Left as Single", float>);

}  // namespace
