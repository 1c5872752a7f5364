// Where images lie: memory that a test gives them.
#pragma once

#include <opencv2/core.hpp>

#include <memory>

/// Gives images memory by rules of its own.
class ImageMemory : public cv::MatAllocator {
public:
    cv::UMatData* allocate(int dims, const int* sizes, int type, void* data, std::size_t* step,
                           cv::AccessFlag flags, cv::UMatUsageFlags usage) const override {
        if (data != nullptr) // which somebody has already
            return cv::Mat::getStdAllocator()->allocate(dims, sizes, type, data, step, flags,
                                                        usage);
        auto image = std::make_unique<cv::UMatData>(this);
        image->size = CV_ELEM_SIZE(type);
        for (int i = dims - 1; i >= 0; image->size *= static_cast<std::size_t>(sizes[i--]))
            step[i] = image->size;
        image->data = image->origdata = take(image->size);
        return image.release();
    }
    bool allocate(cv::UMatData* image, cv::AccessFlag, cv::UMatUsageFlags) const override {
        return image != nullptr;
    }
    void deallocate(cv::UMatData* image) const override {
        giveBack(image->origdata, image->size);
        delete image;
    }

private:
    virtual uchar* take(std::size_t size) const = 0;
    virtual void giveBack(uchar* bytes, std::size_t size) const = 0;
};

/// While it lives, all images lie in this memory whose place is not chosen otherwise.
class DefaultMemory {
public:
    explicit DefaultMemory(ImageMemory& memory) : outer(cv::Mat::getDefaultAllocator()) {
        cv::Mat::setDefaultAllocator(&memory);
    }
    DefaultMemory(const DefaultMemory&) = delete;
    DefaultMemory& operator=(const DefaultMemory&) = delete;
    ~DefaultMemory() { cv::Mat::setDefaultAllocator(outer); }

private:
    cv::MatAllocator* outer;
};
