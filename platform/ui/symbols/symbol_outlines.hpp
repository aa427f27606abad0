#pragma once

#include "ui/symbols/symbol.hpp"

/// The symbols, each drawn anew at every call.
namespace ui::symbol_outlines {

Symbol lock();
Symbol openLock();
Symbol turningLock();

Symbol question();
Symbol clock();
Symbol clockWithAlarm();

Symbol smile();
Symbol watch();
Symbol movingPointer();
Symbol personWithCheckMark();

}  // namespace ui::symbol_outlines
