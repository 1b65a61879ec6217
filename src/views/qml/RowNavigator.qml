import QtQuick

/// Moves the focus among the controls of a list's rows: Tab from one to the next, Up and Down from
/// row to row in the same column. Rows that are out of sight are brought in.
QtObject {
    id: root

    required property ListView list

    /// Whether the key was one of those.
    function pressKey(event) {
        const plain = (event.modifiers & ~(Qt.ShiftModifier | Qt.KeypadModifier)) === Qt.NoModifier;
        if (!plain)
            return false;
        switch (event.key) {
        case Qt.Key_Tab:
            return step(event.modifiers & Qt.ShiftModifier ? -1 : 1, false);
        case Qt.Key_Backtab:
            return step(-1, false);
        case Qt.Key_Down:
            return step(1, true);
        case Qt.Key_Up:
            return step(-1, true);
        }
        return false;
    }

    /// Takes the focus from whichever control has it.
    function leave() {
        const place = focused();
        if (place)
            place.control.focus = false;
    }

    function lines(index) {
        const loader = list.itemAtIndex(index);
        const all = loader ? loader.controlRows : [];
        return all.map(line => line.filter(control => control.activeFocusOnTab)).filter(line => line.length > 0);
    }

    function focused() {
        for (let index = 0; index < list.count; ++index) {
            const rows = lines(index);
            for (let line = 0; line < rows.length; ++line) {
                const column = rows[line].findIndex(control => control.activeFocus);
                if (column >= 0)
                    return {index, line, column, rows, control: rows[line][column]};
            }
        }
        return null;
    }

    function step(direction, byLine) {
        const place = focused();
        if (place && !byLine) {
            const column = place.column + direction;
            const line = place.rows[place.line];
            if (column >= 0 && column < line.length)
                return focusOn(line[column]);
        }
        if (place) {
            const line = place.rows[place.line + direction];
            if (line)
                return focusOn(pick(line, direction, byLine, place.column));
        }
        const start = place ? place.index : direction > 0 ? -1 : list.count;
        for (let moved = 1; moved <= list.count; ++moved) {
            const index = (start + direction * moved + 2 * list.count) % list.count;
            reveal(index);
            const rows = lines(index);
            if (rows.length > 0)
                return focusOn(pick(rows[direction > 0 ? 0 : rows.length - 1], direction, byLine, place ? place.column : 0));
        }
        return false;
    }

    /// Rows that are far away are found by estimates of their heights, better each time.
    function reveal(index) {
        for (let attempt = 0; attempt < 4; ++attempt) {
            list.positionViewAtIndex(index, ListView.Contain);
            list.forceLayout();
            if (list.itemAtIndex(index))
                return;
        }
    }

    function pick(line, direction, byLine, column) {
        const index = byLine ? Math.min(column, line.length - 1) : direction > 0 ? 0 : line.length - 1;
        return line[index];
    }

    function focusOn(control) {
        control.forceActiveFocus(Qt.TabFocusReason);
        return true;
    }
}
