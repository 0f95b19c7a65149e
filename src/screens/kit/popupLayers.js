.pragma library

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
