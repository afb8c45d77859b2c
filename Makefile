# Top-level jobs. Each installs what it needs and the machine lacks, then configures and builds.
#   make test   every test suite: C++ (plain and sanitized), fuzzing, install check, the cross
#               builds' suites and library checks, Java against the jar of every platform
#   make jar    the library jar with the library of every platform
#   make natives  the library of every platform, in $(BUILD)/natives/<platform>/
#   make demo   labels a map of Europe from data/ through the library, writes out/demo.png
#   make demo-streets  a street map of central Helsinki with names along the streets
#   make demo-tiles    one pass over a zoom level's window cut into tiles: out/tiles.png
#   make bench  the benchmark suite, results in out/bench/
#   make mutate mutation testing of src/ against the unit tests (never part of test)

JOBS ?= 2
BUILD := build
CMAKE_GEN := -G Ninja
FUZZ_SECONDS ?= 600
# Time budget of the straightforward pass in the placement comparison, in seconds.
COMPARE_SECONDS ?= 30

.PHONY: test test-native test-asan test-fuzz test-java test-cross deps-build deps-java deps-cross native asan fuzz-build bench fuzz format clean demo demo-streets demo-tiles java-package mutate natives jar

# ccache, when it is installed, keeps compiled objects across build trees and worktrees.
CCACHE := $(shell command -v ccache 2>/dev/null)
ifneq ($(CCACHE),)
CMAKE_GEN += -DCMAKE_CXX_COMPILER_LAUNCHER=ccache
export CCACHE_BASEDIR ?= $(CURDIR)
endif

test: test-native test-asan test-fuzz test-cross test-java

deps-build:
	bash .ci/deps.sh build

native: deps-build
	cmake -S . -B $(BUILD)/native $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD)/native -j $(JOBS)

asan: deps-build
	cmake -S . -B $(BUILD)/asan $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DKXAC_SANITIZE=ON
	cmake --build $(BUILD)/asan -j $(JOBS)

# Every test label in the plain build; the sanitized build leaves out the slow whole-data
# comparisons, which the plain build has run.
test-native: native
	ctest --test-dir $(BUILD)/native --output-on-failure -j $(JOBS)

test-asan: asan
	ctest --test-dir $(BUILD)/asan --output-on-failure -j $(JOBS) -LE slow

deps-java:
	bash .ci/deps.sh java

# The Java build (java/pom.xml): the library jar (java/library, with sources and Javadoc jars) and
# the demos and benchmarks (java/demo). The version is the parent pom's.
JAVA_VERSION := $(shell sed -n 's:^  <version>\(.*\)</version>:\1:p' java/pom.xml | head -n 1)
LIB_JAR = java/library/target/kxavoidcontainer-$(JAVA_VERSION).jar
DEMO_CP = $(LIB_JAR):java/demo/target/kxavoidcontainer-demo-$(JAVA_VERSION).jar

# Every platform's library, cross-built with zig (README, "Platforms"): one build tree each under
# $(BUILD)/cross/, the stripped library copied to $(BUILD)/natives/<platform>/ under the name
# Java looks for. The platforms of SUITE_PLATFORMS also build the C++ suites, which run here
# natively, under qemu-user or under wine; the macOS libraries are only checked. Linux x86-64
# with glibc runs its suites in the plain and sanitized builds above, and its cross-built library
# under every Java test.
PLATFORMS := linux-x86_64 linux-aarch64 linux-x86_64-musl linux-aarch64-musl macos-x86_64 \
	macos-aarch64 windows-x86_64
SUITE_PLATFORMS := linux-aarch64 linux-x86_64-musl linux-aarch64-musl windows-x86_64
ZIG_VERSION := 0.17.1
TOOLS := $(abspath $(BUILD)/toolchains)
NATIVES := $(abspath $(BUILD)/natives)
ARM64_ROOT := $(TOOLS)/arm64-root
ARM64_JAVA := qemu-aarch64 -L $(ARM64_ROOT) $(ARM64_ROOT)/usr/lib/jvm/java-17-openjdk-arm64/bin/java
# zig's cache and wine's prefix live in the build tree, so that a clean build is clean.
CROSS_ENV := ZIG_GLOBAL_CACHE_DIR=$(TOOLS)/zig-cache WINEPREFIX=$(TOOLS)/wine WINEDEBUG=-all
JAVA_SOURCE_DIR := java/library/src/main/java/com/tavrint/core/util/index/grid

deps-cross: deps-build
	bash .ci/deps.sh cross
	bash .ci/cross-tools.sh $(TOOLS) $(ZIG_VERSION)

# cross-<platform>: configures and builds one platform's tree (not the slow tests' data).
cross-%: deps-cross
	$(CROSS_ENV) cmake -S . -B $(BUILD)/cross/$* $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release \
		-DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/$*.cmake -DKXAC_ZIG=$(TOOLS)/zig/ziglang/zig \
		-DKXAC_STRIP=ON -DKXAC_JAR_NATIVE_DIR=$(NATIVES)/$* -DKXAC_TARGET_SYSROOT=$(ARM64_ROOT) \
		-DKXAC_BUILD_TESTS=$(if $(filter $*,$(SUITE_PLATFORMS)),ON,OFF)
	@date +%s > $(BUILD)/cross/$*.start
	$(CROSS_ENV) cmake --build $(BUILD)/cross/$* -j $(JOBS)
	@echo "$*: built in $$(( $$(date +%s) - $$(cat $(BUILD)/cross/$*.start) )) s"

natives: $(addprefix cross-,$(PLATFORMS))

# Each platform's C++ suites but the slow whole-data comparisons (the plain build runs those),
# then the checks of every library: its format and processor, the C++ API and the 23 natives
# exported, nothing internal.
test-cross: natives
	@for p in $(SUITE_PLATFORMS); do \
		echo "== $$p: C++ suites"; start=$$(date +%s); \
		$(CROSS_ENV) ctest --test-dir $(BUILD)/cross/$$p --output-on-failure -j $(JOBS) -LE slow \
			|| exit 1; \
		echo "$$p: tested in $$(( $$(date +%s) - start )) s"; \
	done
	@passed=0; failed=0; for p in $(PLATFORMS); do \
		lib=$$(ls $(NATIVES)/$$p/*); echo "== $$p: $$(basename $$lib), $$(wc -c < $$lib) bytes"; \
		for check in "library_format.sh $$lib $$p" "exported_api.sh $$lib" \
			"exported_java_symbols.sh $$lib $(JAVA_SOURCE_DIR)/CAvoidContainerWrap.java $(JAVA_SOURCE_DIR)/AvoidNatives.java"; do \
			if sh tests/binding/$$check; then passed=$$((passed + 1)); \
			else failed=$$((failed + 1)); echo "FAILED: $$check"; fi; \
		done; \
	done; echo "library checks: $$passed passed, $$failed failed"; [ $$failed -eq 0 ]

# The library jar with every platform's library (java/library/target/), its sources and Javadoc.
jar: natives deps-java
	$(MVN_PACKAGE) -Dkxac.native.dir=$(NATIVES)
	unzip -l $(LIB_JAR) | grep '/native/'

# The Java tests of both modules against the libraries of every platform in the classes that
# become the jar, then the packaged jar from a plain class path (the native library must come out
# of the jar, the demos must not be in it), on this machine's JVM and on an ARM64 JVM under
# qemu-user.
test-java: natives deps-java
	mvn -B -ntp -f java/pom.xml -Dkxac.native.dir=$(NATIVES) verify
	unzip -l $(LIB_JAR) | grep '/native/'
	java -cp "$(LIB_JAR)" tests/binding/JarSmoke.java
	mkdir -p $(BUILD)/jar-smoke
	javac -d $(BUILD)/jar-smoke -cp "$(LIB_JAR)" tests/binding/JarSmoke.java
	$(ARM64_JAVA) -cp "$(LIB_JAR):$(BUILD)/jar-smoke" JarSmoke

# The index loader under libFuzzer (clang, its own build tree). The seed corpus in the repo is
# only read; new inputs and any crash land in the build tree.
fuzz-build: deps-build
	bash .ci/deps.sh fuzz
	cmake -S . -B $(BUILD)/fuzz $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
		-DCMAKE_CXX_COMPILER=clang++ -DKXAC_BUILD_FUZZ=ON -DKXAC_BUILD_TESTS=OFF -DKXAC_WITH_JNI=OFF
	cmake --build $(BUILD)/fuzz --target index_load_fuzzer -j $(JOBS)
	mkdir -p $(BUILD)/fuzz/corpus

FUZZER = $(BUILD)/fuzz/tests/fuzz/index_load_fuzzer -rss_limit_mb=2048 -artifact_prefix=$(BUILD)/fuzz/
FUZZ_CORPUS = $(BUILD)/fuzz/corpus tests/fuzz/corpus

test-fuzz: fuzz-build
	$(FUZZER) -max_total_time=60 $(FUZZ_CORPUS)

fuzz: fuzz-build
	$(FUZZER) -max_total_time=$(FUZZ_SECONDS) $(FUZZ_CORPUS)

# The library of the plain build, the jar around it, and the demo program from the jar. Options
# go in DEMO_ARGS, e.g. make demo DEMO_ARGS="--window 5,45,16,55 --show-rejected".
DEMO_ARGS ?=
MVN_PACKAGE = mvn -B -ntp -q -f java/pom.xml -Dmaven.test.skip=true -Dmaven.javadoc.skip=true \
	-Dmaven.source.skip=true package

java-package: deps-build
	bash .ci/deps.sh demo
	cmake -S . -B $(BUILD)/native $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD)/native --target KXAvoidContainer -j $(JOBS)
	$(MVN_PACKAGE) -Dkxac.native.library=$(abspath $(BUILD)/native/libKXAvoidContainer.so)

# Writes out/demo.png and out/demo-labels.tsv (every label: placed or not, and where).
demo: java-package
	java -cp "$(DEMO_CP)" com.tavrint.demo.Demo $(DEMO_ARGS)

# Writes out/streets.png and out/streets-labels.tsv from data/helsinki/. Options in STREETS_ARGS.
STREETS_ARGS ?=
demo-streets: java-package
	java -cp "$(DEMO_CP)" com.tavrint.demo.StreetsDemo $(STREETS_ARGS)

# Places the cities once over a window of a web Mercator zoom level, cuts the outcome into
# 256-pixel tiles: writes out/tiles.png (a mosaic of tiles, each drawn from its own list) and
# out/tiles-labels.tsv (the cities of every tile). Options in TILES_ARGS.
TILES_ARGS ?=
demo-tiles: java-package
	java -cp "$(DEMO_CP)" com.tavrint.demo.TilesDemo $(TILES_ARGS)

# Google Benchmark suite (its own optimised build tree), then whole passes through JNI, then the
# library beside an occupancy-bitmap placer and the C++ pass beside the JNI pass; each prints a
# table and writes it to out/bench/ (JSON or markdown).
bench: deps-build
	bash .ci/deps.sh bench java
	cmake -S . -B $(BUILD)/bench $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DKXAC_BUILD_BENCH=ON \
		-DKXAC_BUILD_TESTS=OFF
	cmake --build $(BUILD)/bench --target KXAvoidContainer kxac_bench kxac_placement_compare \
		kxac_placement_vs_bitmap -j $(JOBS)
	mkdir -p out/bench
	$(BUILD)/bench/bench/kxac_bench --benchmark_out=out/bench/native.json \
		--benchmark_out_format=json
	$(BUILD)/bench/bench/kxac_placement_compare $(COMPARE_SECONDS) | tee out/bench/placement_compare.md
	$(MVN_PACKAGE) -Dkxac.native.library=$(abspath $(BUILD)/bench/libKXAvoidContainer.so)
	java -cp "$(DEMO_CP)" com.tavrint.demo.PassBenchmark out/bench/java.json
	$(BUILD)/bench/bench/kxac_placement_vs_bitmap --java out/bench/java.json \
		| tee out/bench/placement_vs_bitmap.md

# Mutants of src/ (the binding left out) from a fixed seed, each built in a copy of the tree under
# $(BUILD)/mutate and run against the unit tests of its layer and the layers above, in the plain
# build and, when those pass, in the sanitized one; prints killed / compiling and the survivors
# (also in $(BUILD)/mutate/report.txt). MUTANTS sets the sample. Takes 20 to 50 minutes for 150.
# MUTATE_SEED picks the sample. Tests written for the survivors of one sample raise that sample's
# score whatever they miss elsewhere, so it says little: to judge the suites, draw a fresh seed,
#   make mutate MUTATE_SEED=$(python3 -c 'import random; print(random.randrange(10**9))')
# and report it with the score, before writing any test for its survivors.
MUTANTS ?= 150
MUTATE_SEED ?= 13

mutate: deps-build
	bash .ci/deps.sh mutate
	python3 tools/mutate.py --build $(BUILD)/mutate --mutants $(MUTANTS) --seed $(MUTATE_SEED) \
		--jobs $(JOBS)

format:
	bash .ci/deps.sh format
	clang-format -i $$(git ls-files '*.h' '*.cpp')

clean:
	rm -rf $(BUILD) out
