#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "app/export/motion_frame.h"
#include "engine/image/image.h"

/// Lends images to threads that need one for a while each, and what drawing a frame on it takes
/// beside it: without a picture, but with the memory of earlier ones, since the first touch of
/// fresh memory costs as much as a filter over it. There are never more than were lent at one time.
/// The pool outlives its loans.
class ImagePool
{
    struct Memory
    {
        zre::Image image;
        MotionScratch scratch;
    };

public:
    class Loan
    {
    public:
        explicit Loan(ImagePool& pool)
            : m_pool(pool)
            , m_memory(pool.take())
        {
        }
        ~Loan() { m_pool.giveBack(std::move(m_memory)); }
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;

        zre::Image& operator*() { return m_memory.image; }
        MotionScratch& scratch() { return m_memory.scratch; }

    private:
        ImagePool& m_pool;
        Memory m_memory;
    };

private:
    Memory take()
    {
        const std::lock_guard lock(m_mutex);
        if (m_free.empty()) {
            m_free.reserve(++m_made); // so that giving back cannot fail
            return {};
        }
        Memory memory = std::move(m_free.back());
        m_free.pop_back();
        // A frame that fails must not show the one before.
        memory.image.width = memory.image.height = 0;
        return memory;
    }

    void giveBack(Memory memory)
    {
        const std::lock_guard lock(m_mutex);
        m_free.push_back(std::move(memory));
    }

    std::mutex m_mutex;
    std::vector<Memory> m_free;
    std::size_t m_made = 0;
};
