.pragma library

// What an input method means to have for itself while a composition is open. Where it lets such a key through, the key
// must do nothing: neither send, leave the field, close a sheet nor move the cursor out of the composition.
function heldByComposition(key) {
    switch (key) {
    case Qt.Key_Return:
    case Qt.Key_Enter:
    case Qt.Key_Escape:
    case Qt.Key_Tab:
    case Qt.Key_Backtab:
    case Qt.Key_Left:
    case Qt.Key_Right:
    case Qt.Key_Up:
    case Qt.Key_Down:
    case Qt.Key_PageUp:
    case Qt.Key_PageDown:
    case Qt.Key_Home:
    case Qt.Key_End:
        return true;
    }
    return false;
}

// Up and down in what is longer than the view.
function moves(key) {
    switch (key) {
    case Qt.Key_Up:
    case Qt.Key_Down:
    case Qt.Key_PageUp:
    case Qt.Key_PageDown:
    case Qt.Key_Home:
    case Qt.Key_End:
        return true;
    }
    return false;
}

// Tab leaves a text of several lines, as it leaves every other control. Whether the key did that.
function leaves(item, event) {
    if ((event.key !== Qt.Key_Tab && event.key !== Qt.Key_Backtab) || (event.modifiers & ~Qt.ShiftModifier))
        return false;
    const forward = event.key === Qt.Key_Tab && !(event.modifiers & Qt.ShiftModifier);
    item.nextItemInFocusChain(forward).forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
    return true;
}

// The menu key belongs to the text, and does nothing while a composition is open. Whether it opens the menu.
function opensMenu(editor, event) {
    event.accepted = true;
    return !editor.inputMethodComposing;
}

// Whether the keyboard came to a text by the keyboard. The templates say so of every control but texts.
function cameByKey(reason) {
    return reason === Qt.TabFocusReason || reason === Qt.BacktabFocusReason || reason === Qt.ShortcutFocusReason;
}

// How the keyboard came to an item: to give it back in the same way. Only controls and their texts know.
function reasonOf(item) {
    return item && item.focusReason !== undefined ? item.focusReason : Qt.PopupFocusReason;
}

// Who finds a text in a field goes on at its end. The editor starts at the beginning of a text that it was given, which
// unlike one that was typed cannot be undone.
function goOnAtEnd(editor) {
    if (editor.cursorPosition === 0 && !editor.canUndo && !editor.canRedo)
        editor.cursorPosition = editor.length;
}
