#include "SmallStack.h"

#include <gtest/gtest.h>

#include <exception>
#include <pthread.h>

namespace NyxTest
{

namespace
{

void* Run(void* argument)
{
    try {
        (*static_cast<const std::function<void()>*>(argument))();
    } catch (const std::exception& exception) {
        ADD_FAILURE() << "exception: " << exception.what();
    } catch (...) {
        ADD_FAILURE() << "exception";
    }
    return nullptr;
}

} // namespace

void RunWithStack(std::size_t bytes, const std::function<void()>& function)
{
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    pthread_t thread{};
    const bool started = pthread_attr_setstacksize(&attributes, bytes) == 0 &&
                         pthread_create(&thread, &attributes, Run, const_cast<std::function<void()>*>(&function)) == 0;
    pthread_attr_destroy(&attributes);
    ASSERT_TRUE(started);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
}

} // namespace NyxTest
