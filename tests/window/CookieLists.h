#pragma once

#include <string>
#include <vector>

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include "cookies/CookieColumns.h"
#include "platform/Forms.h"
#include "platform/ListView.h"

/// A window that holds the three lists and the search box alone.
class CookieLists : public platform::Form {
 public:
  CookieLists()
      : Form({.Name = "CookieLists", .Caption = "", .ClientWidth = 9000, .ClientHeight = 7000}) {}

  platform::ListView ListVCookie{
      *this, {.Name = "ListVCookie", .At = {0, 0, 9000, 2500}}, CookieColumns};
  platform::ListView ListVSearch{
      *this, {.Name = "ListVSearch", .At = {0, 2500, 9000, 2500}}, CookieColumns};
  platform::TextBox TextSearch{*this, {.Name = "TextSearch", .At = {0, 5100, 1575, 285}}};
  platform::ListBox ListLog{*this, {.Name = "ListLog", .At = {0, 5500, 9000, 1500}}};
};

using Cells = std::vector<std::string>;

/// The cells of one column, counted from 1.
inline Cells ColumnOf(platform::ListView& list, int index) {
  Cells cells;
  for (int position = 1; position <= list.Count(); ++position) {
    const platform::ListView::ListItem row = list.Item(position);
    cells.push_back(index == 1 ? row.Text() : row.SubItems(index - 1));
  }
  return cells;
}

/// While it lives, every message box is answered with Yes.
class Answers {
 public:
  Answers() {
    timer_.callOnTimeout([this] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr) return;
      ++Asked;
      box->done(QMessageBox::Yes);
    });
    timer_.start(1);
  }

  int Asked = 0;

 private:
  QTimer timer_;
};
