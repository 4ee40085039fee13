// LinkedList: a singly linked list of 32-bit values with a cursor.
#pragma once
#include <cstdint>

namespace vexil {

class LinkedList {
public:
    LinkedList() = default;
    ~LinkedList();
    LinkedList(const LinkedList&) = delete;
    LinkedList& operator=(const LinkedList&) = delete;

    // Adds at the end and makes the new node current.
    void Append(std::int32_t data);
    // Removes the current node and moves on to its next. With no current node: the message box
    // "Current Item Invalid" (title "LinkedList", stop icon) and no change.
    void DeleteCurr();
    // From the first item, walks up to Count items; deletes the first equal value (and stops).
    void FindAndDelete(std::int32_t data);
    // Value of the current node; with none, the message box and 0.
    std::int32_t CurrItemData();
    void SetCurrToNext();
    void SetCurrToFirst();
    bool IsCurrItemValid() const { return m_curr != nullptr; }
    int Count() const { return m_count; }
    bool IsFirstNull() const { return m_first == nullptr; }
    bool IsLastNull() const { return m_last == nullptr; }

private:
    struct Node {
        std::int32_t data;
        Node* next;
    };
    void invalid();
    int m_count = 0;
    Node* m_first = nullptr;
    Node* m_last = nullptr;
    Node* m_curr = nullptr;
    Node* m_prev = nullptr; // the node before m_curr, or null when m_curr is the first
};

} // namespace vexil
