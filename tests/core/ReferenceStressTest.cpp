#include "qn/core/Object.h"
#include "qn/core/xcom/Module.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace qn;

namespace {

std::atomic<int> s_destroyed{0};

class Counted : public Object {
public:
    ~Counted() override { s_destroyed.fetch_add(1); }
};

} // namespace

TEST(ReferenceStress, ConcurrentHoldersDestroyExactlyOnce) {
    for (int round = 0; round < 20; ++round) {
        s_destroyed = 0;
        xcom::Module module;
        auto* object = new Counted;
        object->SetComModule(&module); // before the first reference, which locks the module
        Reference<Counted> shared(object);
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t) {
            threads.emplace_back([copy = shared]() mutable {
                for (int i = 0; i < 2000; ++i) {
                    Reference<Counted> again = copy;
                    Reference<Counted> moved = std::move(again);
                    uint32_t hash = 0;
                    moved->HashCode(&hash);
                }
            });
        }
        shared = nullptr;
        for (auto& t : threads)
            t.join();
        EXPECT_EQ(s_destroyed.load(), 1);
        EXPECT_EQ(module.GetRefCount(), 0u);
    }
}
