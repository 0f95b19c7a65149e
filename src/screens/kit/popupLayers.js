.pragma library

// What is open, in the order in which the overlays have it. One that is on its way out keeps its place.
const modals = [];
const menus = [];

// The popup that `item` stands in, as the overlay has it among its children; null outside of all popups.
function popupOf(item, overlay) {
    for (let at = item; at; at = at.parent) {
        if (at.parent === overlay)
            return at;
    }
    return null;
}

// The layer for what opens at `item`: a list, a menu or a tip must not lie under the popup that it belongs to.
function layerOf(item, overlay) {
    const popup = popupOf(item, overlay);
    return popup ? popup.z : 0;
}

// Whether `popup` lies over `other`: in a higher layer, or opened later in the same.
function liesOver(popup, other, overlay) {
    if (popup.z !== other.z)
        return popup.z > other.z;
    const all = Array.from(overlay.children);
    return all.indexOf(popup) > all.indexOf(other);
}

// The modal that nothing open lies over; null while none is open.
function front(overlay) {
    let found = null;
    for (const modal of modals) {
        if (modal.held && modal.parent === overlay && (!found || modal.z >= found.z))
            found = modal;
    }
    return found;
}

// Tells all of them who is in front, to be called whenever one comes, goes or changes its layer.
function settle(overlay) {
    const first = front(overlay);
    for (const modal of Array.from(modals)) {
        if (modal.parent === overlay)
            modal.inFront = modal === first;
    }
}

function enter(modal) {
    if (!modals.includes(modal))
        modals.push(modal);
    settle(modal.parent);
}

// It is closed, or gone with what it belonged to, and then it is in no overlay any more.
function leave(modal) {
    const at = modals.indexOf(modal);
    if (at < 0)
        return;
    modals.splice(at, 1);
    for (const other of Array.from(modals))
        settle(other.parent);
}

function enterMenu(menu, overlay) {
    menus.push({menu: menu, overlay: overlay});
}

function leaveMenu(menu) {
    const at = menus.findIndex(one => one.menu === menu);
    if (at >= 0)
        menus.splice(at, 1);
}

// A menu would stay drawn beneath `modal`, which opens over it; where the person was before counts for both.
function closeMenus(modal) {
    for (const one of menus.filter(one => one.overlay === modal.parent)) {
        modal.remember(one.menu.before, one.menu.beforeReason);
        one.menu.close();
    }
}
