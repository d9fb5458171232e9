#include "frame/member_table.h"

#include <gtest/gtest.h>

namespace {

using member_table::Declaration;
using member_table::fits;
using member_table::fitsParameters;

// What a declaration takes and answers, and what it must not be confused with.
static_assert(fitsParameters<"people as ABPersonVXR()">());
static_assert(fitsParameters<"addRecord(record as ABRecordVXR, byref error as NSErrorVXR) as boolean", REALobject,
                             REALobject*>());
static_assert(!fitsParameters<"addRecord(record as ABRecordVXR, byref error as NSErrorVXR) as boolean", REALobject,
                              REALobject>());
static_assert(!fitsParameters<"addRecord(record as ABRecordVXR) as boolean", REALobject, REALobject*>());
static_assert(fitsParameters<"valueAtIndex(index as UInt32) as variant", std::uint32_t>());
static_assert(!fitsParameters<"valueAtIndex(index as UInt32) as variant", REALinteger>());
static_assert(fitsParameters<"removeProperties(properties() as string) as integer", REALstringArray>());
static_assert(!fitsParameters<"removeProperties(properties() as string) as integer", REALstring>());
static_assert(fitsParameters<"f(children() as ABSearchElementVXR)", REALobjectArray>());
static_assert(fitsParameters<"setImageData(data as Memoryblock) as boolean", REALmemoryBlock>());
static_assert(!fitsParameters<"setImageData(data as Memoryblock) as boolean", REALobject>());

template <class T>
consteval bool answers(std::string_view declaration) {
  return fits<T>(Declaration(declaration).result);
}

static_assert(answers<REALobjectArray>("people as ABPersonVXR()"));
static_assert(!answers<REALobject>("people as ABPersonVXR()"));
static_assert(answers<REALstringArray>("properties as string()"));
static_assert(answers<REALdictionaryArray>("SelectedDictionaries as Dictionary()"));
static_assert(answers<void>("setMe(moi as ABPersonVXR)"));
static_assert(!answers<bool>("setMe(moi as ABPersonVXR)"));
static_assert(answers<bool>("addRecord(record as ABRecordVXR, byref error as NSErrorVXR) as boolean"));
static_assert(!answers<REALinteger>("save as boolean"));
static_assert(answers<float>("Left as Single"));
static_assert(answers<REALobject>("valueForProperty(PropertyName as string) as variant"));

}  // namespace

TEST(MemberTable, RowsCarryFunctionSetterTextAndFlags) {
  const REALmethodDefinition row = assignableMethod<"ColumnTitle(columntitle as String) as String">(
      +[](REALobject, REALstring) -> REALstring { return nullptr; }, +[](REALobject, REALstring, REALstring) {},
      Word{0x100000});
  EXPECT_NE(row.function, nullptr);
  EXPECT_NE(row.setter, nullptr);
  EXPECT_STREQ(row.declaration, "ColumnTitle(columntitle as String) as String");
  EXPECT_EQ(row.flags, 0x100000u);

  const REALmethodDefinition plain = sharedMethod<"GotSharedAddressbook as boolean">(+[] { return true; });
  EXPECT_EQ(plain.setter, nullptr);
  EXPECT_EQ(plain.flags, 4u);
}
