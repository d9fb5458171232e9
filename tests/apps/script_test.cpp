#include "tests/apps/running_command.h"
#include "tests/contacts/contacts_folder.h"

#include <gtest/gtest.h>

#include <string>

TEST(Script, DoesWhatTheLanguageSays) {
  const ContactsFolder folder;
  struct Case {
    const char* program;
    const char* output;
  };
  const Case cases[] = {
      {"print 1 + 2 * 3, (1 + 2) * 3, 7 / 2, -2 - 1", "7 9 3.5 -3\n"},
      {"print \"a\"\"b\" & 1, 1.5 + 1  ' the rest", "a\"b1 2.5\n"},
      {"print 1 < 2 and not (2 <= 1) or false, \"a\" <> \"b\", nil = nil, 6 and 3, 6 or 1", "true true true 2 7\n"},
      {"DIM X = 1\nx = X + 1\nPrint x", "2\n"},
      {"dim s = \"\"\nfor i = 1 to 3\nfor each j in array(\"a\", \"b\")\ns = s + j + i\nnext\nnext\nprint s",
       "a1b1a2b2a3b3\n"},
      {"dim i = 0\nwhile i < 3\ni = i + 1\nwend\nprint i", "3\n"},
      {"for i = 1 to 4\nif i = 1 then\nprint \"one\"\nelseif i = 2 then\nprint \"two\"\nelse\nprint i\nend if\nnext",
       "one\ntwo\n3\n4\n"},
      {"dim d = new Dictionary\nd.Value(\"k\") = 2\nprint d.Value(\"k\"), d.Count\nd = new Date\nd.Year = 1999\nprint "
       "d.Year",
       "2 1\n1999\n"},
      {"dim a = array(1, \"b\")\nprint ubound(a), a(1), array(2, 3)(1), len(\"abc\"), date(\"--02-29\")",
       "1 b 3 3 --02-29\n"},
      {"dim names() as string\nprint ubound(names), ABPersonVXR.removeProperties(names), new NSImageVXR(nil)",
       "-1 0 NSImageVXR\n"},
      {"print \"a\" + EndOfLine + chr(66), ABPersonVXR.properties(0)", "a\nB UID\n"},
      {"print ABAddressBookVXR.kABNotEqual, ABAddressBookVXR.kABCreationDateProperty", "1 Creation\n"},
      {"try\nprint (new Dictionary).Value(1)\ncatch e\nprint e.Message\nend try", "The dictionary has no such key.\n"},
  };
  for (const Case& each : cases) EXPECT_EQ(outputOf({"run"}, each.program), each.output) << each.program;
}

TEST(Script, SavesWhatItDoesToTheContacts) {
  const ContactsFolder folder;
  outputOf({"run"}, R"(
dim book = ABAddressBookVXR.sharedAddressbook
dim person = new ABPersonVXR(book)
person.setValue("Ada", ABAddressBookVXR.kABFirstNameProperty)
dim phones = new ABMutableMultiValueVXR
phones.addValue("+44 1", ABAddressBookVXR.kABPhoneHomeLabel)
person.setValue(phones, ABAddressBookVXR.kABPhoneProperty)
dim error
if not book.save(error) then
  print error.LocalizedDescription
end if
)");
  EXPECT_EQ(outputOf({"find", "ada"}), "Name  Email  Phone\nAda          +44 1\n");
}

TEST(Script, HandlesEvents) {
  const ContactsFolder folder;
  EXPECT_EQ(outputOf({"run"}, R"(
dim book = ABAddressBookVXR.sharedAddressbook
on book.DatabaseChanged(externally, inserted, updated, deleted)
  print externally, book.people(0).DisplayName, ubound(inserted), ubound(deleted)
end on
book.EnableEvent
dim person = new ABPersonVXR(book)
person.setValue("Ada", "First")
print book.save
wait(0)
)"),
            "false Ada 0 -1\ntrue\n");
}

TEST(Script, NamesTheLineThatCannotBeRun) {
  const ContactsFolder folder;
  struct Case {
    const char* program;
    const char* error;
  };
  const Case cases[] = {
      {"print 1\nprint x", "1\ncontacts: standard input:2: no variable \"x\"; dim x makes it\n"},
      {"print 1\nx = = 2", "contacts: standard input:2: \"=\"; expected a name\n"},
      {"print \"a", "contacts: standard input:1: a text isn't closed; expected \"\n"},
      {"print 1 # 2", "contacts: standard input:1: \"#\" is not of the language\n"},
      {"\nif true then\nprint 1", "contacts: standard input:2: this if is never ended; expected end if\n"},
      {"next", "contacts: standard input:1: this ends nothing\n"},
      {"try\nprint 1\nend try", "contacts: standard input:1: this try is never ended; expected catch\n"},
      {"end if", "contacts: standard input:1: this ends nothing\n"},
      {"if 1 then\nend if", "contacts: standard input:1: a condition is Int"},
      {"print 5(0)", "contacts: standard input:1: host: a value is Integer, expected an object\n"},
      {"dim n\nprint n.Name", "contacts: standard input:2: name of Nil; expected an object\n"},
      {"dim d = new Dictionary\nprint d.Value(1)", "contacts: standard input:2: KeyNotFoundException"},
      {"print new Nobody", "contacts: standard input:1: no class \"nobody\"\n"},
      {"print ABAddressBookVXR.nothing", "contacts: standard input:1: "},
      {"print array(1)(1)", "contacts: standard input:1: no element 1 in an array of 1\n"},
      {"print chr(300)", "contacts: standard input:1: chr: 300, expected 0 to 127\n"},
      {"dim x = ", "contacts: standard input:1: the line ends; expected a name\n"},
      {"on x.y(1)", "contacts: standard input:1: \"1\"; expected a name\n"},
      {"dim x\non x.y\nend on", "contacts: standard input:2: x is nil; expected an object\n"},
  };
  for (const Case& each : cases) {
    const Outcome outcome = run({"run"}, each.program);
    EXPECT_EQ(outcome.status, 1) << each.program;
    EXPECT_TRUE(outcome.output.starts_with(each.error)) << each.program << "\n" << outcome.output;
  }
}
