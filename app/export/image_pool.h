#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "engine/image/image.h"

/// Lends images to threads that need one for a while each: without a picture, but with the memory
/// of earlier ones, since the first touch of fresh memory costs as much as a filter over it. There
/// are never more than were lent at one time. The pool outlives its loans.
class ImagePool
{
public:
    class Loan
    {
    public:
        explicit Loan(ImagePool& pool)
            : m_pool(pool)
            , m_image(pool.take())
        {
        }
        ~Loan() { m_pool.giveBack(std::move(m_image)); }
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;

        zre::Image& operator*() { return m_image; }

    private:
        ImagePool& m_pool;
        zre::Image m_image;
    };

private:
    zre::Image take()
    {
        const std::lock_guard lock(m_mutex);
        if (m_free.empty()) {
            m_free.reserve(++m_made); // so that giving back cannot fail
            return {};
        }
        zre::Image image = std::move(m_free.back());
        m_free.pop_back();
        image.width = image.height = 0; // a frame that fails must not show the one before
        return image;
    }

    void giveBack(zre::Image image)
    {
        const std::lock_guard lock(m_mutex);
        m_free.push_back(std::move(image));
    }

    std::mutex m_mutex;
    std::vector<zre::Image> m_free;
    std::size_t m_made = 0;
};
