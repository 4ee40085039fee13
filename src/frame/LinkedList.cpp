#include "LinkedList.h"

#include "Dialogs.h"

namespace vexil {

LinkedList::~LinkedList() {
    Node* n = m_first;
    while (n) {
        Node* next = n->next;
        delete n;
        n = next;
    }
}

void LinkedList::invalid() {
    dialogs().msgBox(QStringLiteral("Current Item Invalid"), MsgOKOnly, MsgCritical, QStringLiteral("LinkedList"));
}

void LinkedList::Append(std::int32_t data) {
    Node* n = new Node{data, nullptr};
    if (m_last) m_last->next = n;
    else m_first = n;
    m_prev = m_last;
    m_last = n;
    m_curr = n;
    ++m_count;
}

void LinkedList::DeleteCurr() {
    if (!m_curr) {
        invalid();
        return;
    }
    Node* next = m_curr->next;
    if (m_prev) m_prev->next = next;
    else m_first = next;
    if (m_last == m_curr) m_last = m_prev;
    delete m_curr;
    m_curr = next;
    --m_count;
}

void LinkedList::FindAndDelete(std::int32_t data) {
    SetCurrToFirst();
    for (int i = 0; i < m_count && m_curr; ++i) {
        if (m_curr->data == data) {
            DeleteCurr();
            return;
        }
        SetCurrToNext();
    }
}

std::int32_t LinkedList::CurrItemData() {
    if (!m_curr) {
        invalid();
        return 0;
    }
    return m_curr->data;
}

void LinkedList::SetCurrToNext() {
    if (!m_curr) return;
    m_prev = m_curr;
    m_curr = m_curr->next;
}

void LinkedList::SetCurrToFirst() {
    m_prev = nullptr;
    m_curr = m_first;
}

} // namespace vexil
