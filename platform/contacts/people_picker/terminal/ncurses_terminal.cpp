#include "platform/contacts/people_picker/terminal.h"
#include "platform/objc/api.h"

#include <fcntl.h>
#include <locale.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>

#define NCURSES_NOMACROS 1
#define NCURSES_WIDECHAR 1
#include <ncurses.h>
#include <term.h>

namespace contacts {
namespace {

// Those that the library takes over.
constexpr std::array kSignals{SIGINT, SIGTERM, SIGTSTP, SIGWINCH};

constexpr wint_t kEscape = 27;
constexpr short kChosenPair = 1;
constexpr short kTitlePair = 2;

// An eventfd; a signal handler can reach nothing else.
int resizeDescriptor = -1;

void noteResize(int) {
  const int error = errno;
  eventfd_write(resizeDescriptor, 1);
  errno = error;
}

bool isOpen = false;

// The library reads and draws characters as the thread's locale has them. The process's own may be anything.
class Utf8Scope {
 public:
  Utf8Scope() : previous_(uselocale(utf8())) {}
  Utf8Scope(const Utf8Scope&) = delete;
  Utf8Scope& operator=(const Utf8Scope&) = delete;
  ~Utf8Scope() { uselocale(previous_); }

 private:
  static locale_t utf8() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;  // null leaves the thread's own
  }

  locale_t previous_;
};

// Characters that turn the direction of the text behind them, on the whole line.
bool turnsDirection(char32_t c) {
  return c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

// Text that takes a known number of cells.
struct CellText {
  std::wstring text;
  int width = 0;
};

// As much of the text as fits, with an ellipsis where that isn't all.
CellText fitted(std::u16string_view units, int width) {
  CellText fit;
  CellText shortened;  // what leaves room for the ellipsis
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t c = units[i];
    const bool isPair = c >= 0xD800 && c < 0xDC00 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00;
    if (isPair) c = 0x10000 + ((c & 0x3FF) << 10) + (units[++i] & 0x3FF);
    if (turnsDirection(c)) continue;
    if (c < 0x20 || (c >= 0x7F && c < 0xA0)) c = U' ';
    int cells = wcwidth(static_cast<wchar_t>(c));
    if (cells < 0) {
      c = 0xFFFD;
      cells = 1;
    }
    if (cells == 0 && fit.text.empty()) continue;  // marks that stand on nothing
    if (fit.width + cells > width) {
      shortened.text += L'\u2026';
      ++shortened.width;
      return width > 0 ? shortened : CellText();
    }
    fit.text += static_cast<wchar_t>(c);
    fit.width += cells;
    if (fit.width < width) shortened = fit;
  }
  return fit;
}

class NcursesTerminal final : public PickerTerminal {
 public:
  // Takes the descriptor over.
  explicit NcursesTerminal(int descriptor);
  ~NcursesTerminal() override;
  NcursesTerminal(const NcursesTerminal&) = delete;
  NcursesTerminal& operator=(const NcursesTerminal&) = delete;

  [[nodiscard]] bool isUsable() const { return screen_ != nullptr && canMove_; }
  [[nodiscard]] int descriptor() const override { return ready_; }
  std::optional<PickerInput> next() override;
  [[nodiscard]] PickerSize size() const override { return {getmaxy(stdscr), getmaxx(stdscr)}; }
  void erase() override { werase(stdscr); }
  int put(int row, int column, int width, std::u16string_view text, PickerStyle style) override;
  void present(int cursorRow, int cursorColumn) override;
  void repaint() override { clearok(curscr, true); }

 private:
  [[nodiscard]] attr_t attributesOf(PickerStyle style) const;
  bool resize() const;
  bool skipSequence();
  std::optional<PickerInput> pointed();

  std::FILE* in_;
  std::FILE* out_;
  int ready_;  // an epoll of keys and resizing
  std::array<struct sigaction, kSignals.size()> previousActions_{};
  SCREEN* screen_ = nullptr;
  bool canMove_ = false;  // the cursor, to any place
  bool hasColors_ = false;
  bool isGone_ = false;
  std::chrono::steady_clock::time_point lastPress_;
  int pressedRow_ = -1;
  int pressedColumn_ = -1;
};

NcursesTerminal::NcursesTerminal(int descriptor)
    : in_(fdopen(descriptor, "r")),
      out_(fdopen(fcntl(descriptor, F_DUPFD_CLOEXEC, 0), "w")),
      ready_(epoll_create1(EPOLL_CLOEXEC)) {
  const Utf8Scope scope;
  for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], nullptr, &previousActions_[i]);
  if (in_ == nullptr || out_ == nullptr) return;
  screen_ = newterm(nullptr, out_, in_);
  if (screen_ == nullptr) return;
  isOpen = true;
  set_term(screen_);
  canMove_ = tigetstr("cup") != nullptr;
  raw();
  noecho();
  nonl();
  keypad(stdscr, true);
  nodelay(stdscr, true);
  set_escdelay(25);
  mouseinterval(0);
  mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED | BUTTON_SHIFT | BUTTON_CTRL, nullptr);
  hasColors_ = has_colors() && start_color() == OK && use_default_colors() == OK &&
               init_pair(kChosenPair, COLOR_WHITE, COLOR_BLUE) == OK && init_pair(kTitlePair, COLOR_CYAN, -1) == OK;

  resizeDescriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  struct sigaction action {};
  action.sa_handler = noteResize;
  action.sa_flags = SA_RESTART;
  sigaction(SIGWINCH, &action, nullptr);
  for (const int watched : {fileno(in_), resizeDescriptor}) {
    epoll_event event{.events = EPOLLIN, .data = {.fd = watched}};
    epoll_ctl(ready_, EPOLL_CTL_ADD, watched, &event);
  }
}

NcursesTerminal::~NcursesTerminal() {
  const Utf8Scope scope;
  if (screen_ != nullptr) {
    endwin();
    delscreen(screen_);
    isOpen = false;
  }
  for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &previousActions_[i], nullptr);
  if (resizeDescriptor >= 0) close(resizeDescriptor);
  resizeDescriptor = -1;
  if (in_ != nullptr) std::fclose(in_);
  if (out_ != nullptr) std::fclose(out_);
  close(ready_);
}

// Whether the terminal has another size now.
bool NcursesTerminal::resize() const {
  eventfd_t count = 0;
  if (eventfd_read(resizeDescriptor, &count) != 0) return false;
  winsize size{};
  if (ioctl(fileno(in_), TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
    resizeterm(size.ws_row, size.ws_col);
  }
  return true;
}

std::optional<PickerInput> NcursesTerminal::next() {
  using Key = PickerInput::Key;
  const Utf8Scope scope;
  if (resize()) return PickerInput{Key::kResize};
  wint_t code = 0;
  const int kind = wget_wch(stdscr, &code);
  if (kind == ERR) {
    pollfd state{.fd = fileno(in_), .events = 0, .revents = 0};
    if (isGone_ || poll(&state, 1, 0) <= 0) return std::nullopt;
    isGone_ = true;
    return PickerInput{Key::kGone};
  }
  if (kind != KEY_CODE_YES) {
    if (code == kEscape && skipSequence()) return next();
    return PickerInput{Key::kCharacter, static_cast<char32_t>(code)};
  }
  struct Named {
    int code;
    Key key;
    bool extends = false;
  };
  static constexpr Named kKeys[] = {
      {KEY_UP, Key::kUp},
      {KEY_DOWN, Key::kDown},
      {KEY_LEFT, Key::kLeft},
      {KEY_BTAB, Key::kLeft},
      {KEY_RIGHT, Key::kRight},
      {KEY_PPAGE, Key::kPageUp},
      {KEY_NPAGE, Key::kPageDown},
      {KEY_HOME, Key::kHome},
      {KEY_END, Key::kEnd},
      {KEY_BACKSPACE, Key::kBackspace},
      {KEY_SR, Key::kUp, true},
      {KEY_SF, Key::kDown, true},
      {KEY_SPREVIOUS, Key::kPageUp, true},
      {KEY_SNEXT, Key::kPageDown, true},
      {KEY_SHOME, Key::kHome, true},
      {KEY_SEND, Key::kEnd, true},
  };
  for (const Named& named : kKeys) {
    if (static_cast<wint_t>(named.code) == code) return PickerInput{.key = named.key, .extends = named.extends};
  }
  if (code == KEY_ENTER) return PickerInput{Key::kCharacter, U'\r'};
  if (code == KEY_MOUSE) {
    if (const std::optional<PickerInput> input = pointed()) return input;
  }
  // A key that means nothing here: perhaps there is another.
  return next();
}

// Whether the escape just read starts what a key sends that the terminal's description doesn't know, or a character
// typed with it: then that is read, too. By itself it is the escape key.
bool NcursesTerminal::skipSequence() {
  wint_t code = 0;
  if (wget_wch(stdscr, &code) == ERR) return false;
  if (code != L'[' && code != L'O') return true;
  while (wget_wch(stdscr, &code) == OK) {
    if (code >= L'@' && code <= L'~') break;
  }
  return true;
}

std::optional<PickerInput> NcursesTerminal::pointed() {
  using Key = PickerInput::Key;
  constexpr std::chrono::milliseconds kDoubleClick{400};
  MEVENT event{};
  if (getmouse(&event) != OK) return std::nullopt;
  PickerInput input{.key = Key::kMouse, .row = event.y, .column = event.x};
  if ((event.bstate & BUTTON4_PRESSED) != 0) input.key = Key::kWheelUp;
  if ((event.bstate & BUTTON5_PRESSED) != 0) input.key = Key::kWheelDown;
  if (input.key != Key::kMouse) return input;
  if ((event.bstate & BUTTON1_PRESSED) == 0) return std::nullopt;
  input.extends = (event.bstate & (BUTTON_SHIFT | BUTTON_CTRL)) != 0;
  const auto now = std::chrono::steady_clock::now();
  input.isDouble = event.y == pressedRow_ && event.x == pressedColumn_ && now - lastPress_ < kDoubleClick;
  lastPress_ = now;
  pressedRow_ = input.isDouble ? -1 : event.y;
  pressedColumn_ = event.x;
  return input;
}

attr_t NcursesTerminal::attributesOf(PickerStyle style) const {
  const auto colored = [this](short pair) { return hasColors_ ? static_cast<attr_t>(COLOR_PAIR(pair)) : attr_t{0}; };
  switch (style) {
    case PickerStyle::kPlain:
      return A_NORMAL;
    case PickerStyle::kDim:
      return A_DIM;
    case PickerStyle::kTitle:
      return A_BOLD;
    case PickerStyle::kFocusedTitle:
      return A_BOLD | A_UNDERLINE | colored(kTitlePair);
    case PickerStyle::kChosen:
      return hasColors_ ? A_BOLD | colored(kChosenPair) : attr_t{A_REVERSE};
    case PickerStyle::kChosenBeside:
      return A_REVERSE;
  }
  return A_NORMAL;
}

int NcursesTerminal::put(int row, int column, int width, std::u16string_view text, PickerStyle style) {
  const Utf8Scope scope;
  const CellText fit = fitted(text, width);
  const std::wstring filled = fit.text + std::wstring(static_cast<std::size_t>(width - fit.width), L' ');
  wattrset(stdscr, static_cast<int>(attributesOf(style)));
  mvwaddwstr(stdscr, row, column, filled.c_str());
  return fit.width;
}

void NcursesTerminal::present(int cursorRow, int cursorColumn) {
  const Utf8Scope scope;
  wmove(stdscr, cursorRow, cursorColumn);
  wrefresh(stdscr);
}

}  // namespace
}  // namespace contacts

extern "C" PLATFORM_API contacts::PickerTerminal* makePickerTerminal(int descriptor);

// Null when the terminal can't be drawn on, or another picker is there already.
contacts::PickerTerminal* makePickerTerminal(int descriptor) {
  if (contacts::isOpen) {
    close(descriptor);
    return nullptr;
  }
  // A program that ends with its picker open leaves a usable terminal behind.
  static const int registered = std::atexit([] {
    if (contacts::isOpen) endwin();
  });
  static_cast<void>(registered);
  auto terminal = std::make_unique<contacts::NcursesTerminal>(descriptor);
  return terminal->isUsable() ? terminal.release() : nullptr;
}
