#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace contacts {

struct PickerSize {
  int rows;
  int columns;
};

struct PickerInput {
  enum class Key {
    kCharacter,
    kUp,
    kDown,
    kLeft,
    kRight,
    kPageUp,
    kPageDown,
    kHome,
    kEnd,
    kBackspace,
    kMouse,
    kWheelUp,
    kWheelDown,
    kResize,
    kGone,  // the terminal is
  };

  Key key;
  char32_t character = 0;  // of kCharacter, control characters included
  bool extends = false;    // with the shift key; a mouse click also with control
  bool isDouble = false;   // of kMouse
  int row = 0;             // of the mouse
  int column = 0;
};

enum class PickerStyle {
  kPlain,
  kDim,
  kTitle,
  kFocusedTitle,
  kChosen,        // in the column that keys go to
  kChosenBeside,  // in another
};

// The terminal that a picker draws itself on, as long as the object lives; afterwards it is as it was.
class PickerTerminal {
 public:
  virtual ~PickerTerminal() = default;

  // Ready to read whenever next() may have something.
  [[nodiscard]] virtual int descriptor() const = 0;
  // Doesn't wait.
  virtual std::optional<PickerInput> next() = 0;
  [[nodiscard]] virtual PickerSize size() const = 0;

  virtual void erase() = 0;
  // Takes exactly width cells of the row: longer text is cut, with an ellipsis, shorter text filled up. Wide and
  // combining characters are told apart; control characters come out as spaces. Answers how many cells the text took.
  virtual int put(int row, int column, int width, std::u16string_view text, PickerStyle style) = 0;
  // Shows what was put since erase, and the cursor at that row and column.
  virtual void present(int cursorRow, int cursorColumn) = 0;
  // All of it anew, at the next present.
  virtual void repaint() = 0;
};

// A new descriptor of the terminal that the process may draw on: one of the standard streams has to be it, and the
// process in its foreground. -1 when there is none.
int attachedTerminal();
// Takes the descriptor over. Null when the terminal can't be drawn on, or a picker is there already.
std::unique_ptr<PickerTerminal> openPickerTerminal(int descriptor);

// What the library that draws exports: a terminal over a descriptor, which it takes over.
using PickerTerminalMaker = PickerTerminal*(int descriptor);
inline constexpr char kPickerTerminalMaker[] = "makePickerTerminal";

}  // namespace contacts
