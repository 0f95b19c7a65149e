/// Something could not be shown: what happened in one sentence, and usually a way to try again.

LMPEmptyState {
    id: root

    actionKind: LMPButton.Secondary
    actionText: "重试"
    iconColor: Theme.danger
    iconName: "error"
}
