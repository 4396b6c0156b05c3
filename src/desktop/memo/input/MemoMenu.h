#pragma once
// The editor's context menu.
class QContextMenuEvent;
class TMemoWidget;

/// Opens it where the event says, or at the caret when a key asked for it. It lives until it is closed.
void ShowMemoMenu(TMemoWidget& widget, QContextMenuEvent& event);
