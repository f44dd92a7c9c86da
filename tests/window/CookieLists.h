#pragma once

#include "cookies/CookieColumns.h"
#include "platform/Forms.h"
#include "platform/ListView.h"

/// A window that holds the three lists and the search box alone.
class CookieLists : public platform::Form {
 public:
  CookieLists()
      : Form({.Name = "CookieLists", .Caption = "", .ClientWidth = 9000, .ClientHeight = 7000}) {}

  platform::ListView ListVCookie{
      *this, {.Name = "ListVCookie", .At = {0, 0, 9000, 2500}}, CookieColumnHeaders()};
  platform::ListView ListVSearch{
      *this, {.Name = "ListVSearch", .At = {0, 2500, 9000, 2500}}, CookieColumnHeaders()};
  platform::TextBox TextSearch{*this, {.Name = "TextSearch", .At = {0, 5100, 1575, 285}}};
  platform::ListBox ListLog{*this, {.Name = "ListLog", .At = {0, 5500, 9000, 1500}}};
};
