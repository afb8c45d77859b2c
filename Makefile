# Top-level jobs. Each installs what it needs and the machine lacks, then configures and builds.
#   make test   every test suite: C++ (plain and sanitized), fuzzing, install check, Java
#   make bench  the benchmark suite, results in out/bench/

JOBS ?= 2
BUILD := build
CMAKE_GEN := -G Ninja

.PHONY: test test-native test-asan deps-build native asan bench fuzz format clean

test: test-native test-asan

deps-build:
	bash .ci/deps.sh build

native: deps-build
	cmake -S . -B $(BUILD)/native $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD)/native -j $(JOBS)

asan: deps-build
	cmake -S . -B $(BUILD)/asan $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DKXAC_SANITIZE=ON
	cmake --build $(BUILD)/asan -j $(JOBS)

test-native: native
	ctest --test-dir $(BUILD)/native --output-on-failure -j $(JOBS)

test-asan: asan
	ctest --test-dir $(BUILD)/asan --output-on-failure -j $(JOBS)

format:
	bash .ci/deps.sh format
	clang-format -i $$(git ls-files '*.h' '*.cpp')

clean:
	rm -rf $(BUILD) out
