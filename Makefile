# Front door. `make test` and `make demo` are the README's two commands.
JOBS ?= $(shell nproc)
TEST_DIR := build/test
RELEASE_DIR := build/release
FUZZ_DIR := build/fuzz

.PHONY: setup test demo bench fuzz fuzz-smoke fuzz-run build-test build-release clean

setup:
	bash scripts/setup

# Debug build under AddressSanitizer and UndefinedBehaviorSanitizer, then every test.
# Line tables (-g1) are all the sanitizers' reports need, and -Og keeps the
# code debuggable; together they compile in half the time of -g -O1. For a
# debugger that shows variables, configure with -DCMAKE_CXX_FLAGS_DEBUG=-g.
build-test: setup
	cmake -S . -B $(TEST_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g1 -Og" -DQUILLET_SANITIZE=ON
	cmake --build $(TEST_DIR) -j $(JOBS)

test: build-test
	ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
	  ctest --test-dir $(TEST_DIR) --output-on-failure -j $(JOBS)

build-release: setup
	cmake -S . -B $(RELEASE_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release -DQUILLET_TESTS=OFF -DQUILLET_BENCH=ON
	cmake --build $(RELEASE_DIR) -j $(JOBS)

demo: build-release
	bash scripts/demo $(RELEASE_DIR)

bench: build-release
	for b in $(RELEASE_DIR)/bench/*_bench; do $$b; done

fuzz: setup
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILLET_TESTS=OFF -DQUILLET_FUZZ=ON
	cmake --build $(FUZZ_DIR) -j $(JOBS)

# Every fuzz target for a few seconds on its seed corpus (what CI runs).
fuzz-smoke: fuzz
	bash scripts/fuzz-run --build $(FUZZ_DIR) --seconds 10

# The long unattended run: every target to ten million inputs.
fuzz-run: fuzz
	bash scripts/fuzz-run --build $(FUZZ_DIR) --runs 10000000

clean:
	rm -rf build
