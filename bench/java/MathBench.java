// Java's BigInteger on the cases and operands of bench/math_bench.cpp, printed as Google
// Benchmark JSON ("math.<Case><digits>/java") for scripts/bench-table.py. Usage:
// java MathBench [FILTER], FILTER a regular expression searched in the case names.
import java.math.BigInteger;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.function.Supplier;
import java.util.regex.Pattern;

public final class MathBench {
    private static long sink;

    // The same generator as math_bench.cpp: a 64-bit linear congruential sequence.
    static String digits(int count, long seed) {
        char[] text = new char[count];
        long x = seed;
        for (int i = 0; i < count; ++i) {
            x = x * 6364136223846793005L + 1442695040888963407L;
            int d = (int) ((x >>> 33) % 10);
            text[i] = (char) ('0' + (i == 0 ? 1 + d % 9 : d));
        }
        return new String(text);
    }

    // Warms up for 0.3 s, then times runs for at least 0.5 s (at least one run each).
    static String measure(String name, Supplier<Object> work) {
        long start = System.nanoTime();
        do {
            sink += work.get().hashCode();
        } while (System.nanoTime() - start < 300_000_000L);
        long runs = 0;
        start = System.nanoTime();
        long elapsed;
        do {
            sink += work.get().hashCode();
            ++runs;
            elapsed = System.nanoTime() - start;
        } while (elapsed < 500_000_000L);
        return String.format(Locale.ROOT, "{\"name\": \"%s/java\", \"run_type\": \"iteration\", "
                + "\"iterations\": %d, \"real_time\": %.3f, \"time_unit\": \"ns\"}",
                name, runs, (double) elapsed / runs);
    }

    public static void main(String[] args) {
        Pattern filter = Pattern.compile(args.length > 0 ? args[0] : ".");
        List<String> results = new ArrayList<>();
        // Each case builds its operands only when the filter selects it: parsing a million
        // digits takes Java a while.
        List<Object[]> cases = new ArrayList<>();
        for (int n : new int[] {100, 1000, 10000, 100000}) {
            cases.add(new Object[] {"math.Multiply" + n, (Supplier<Supplier<Object>>) () -> {
                BigInteger a = new BigInteger(digits(n, 1)), b = new BigInteger(digits(n, 2));
                return () -> a.multiply(b);
            }});
        }
        for (int n : new int[] {100, 1000, 10000, 100000}) {
            cases.add(new Object[] {"math.Divide" + n, (Supplier<Supplier<Object>>) () -> {
                BigInteger a = new BigInteger(digits(2 * n, 3)), b = new BigInteger(digits(n, 4));
                return () -> a.divideAndRemainder(b)[1];
            }});
        }
        for (int n : new int[] {10000, 1000000}) {
            cases.add(new Object[] {"math.ToString" + n, (Supplier<Supplier<Object>>) () -> {
                BigInteger a = new BigInteger(digits(n, 5));
                return () -> a.toString();
            }});
        }
        for (int n : new int[] {10000, 1000000}) {
            cases.add(new Object[] {"math.Parse" + n, (Supplier<Supplier<Object>>) () -> {
                String text = digits(n, 6);
                return () -> new BigInteger(text);
            }});
        }
        cases.add(new Object[] {"math.ModPow2048", (Supplier<Supplier<Object>>) () -> {
            char[] modulus = digits(617, 7).toCharArray();
            modulus[616] = '7';
            BigInteger m = new BigInteger(new String(modulus));
            BigInteger base = new BigInteger(digits(616, 8));
            BigInteger exponent = new BigInteger(digits(616, 9));
            return () -> base.modPow(exponent, m);
        }});

        for (Object[] c : cases) {
            String name = (String) c[0];
            if (filter.matcher(name + "/java").find()) {
                @SuppressWarnings("unchecked")
                Supplier<Supplier<Object>> setup = (Supplier<Supplier<Object>>) c[1];
                results.add(measure(name, setup.get()));
            }
        }
        System.out.println("{\"benchmarks\": [" + String.join(",\n", results) + "]}");
        System.err.println("sink " + sink);
    }
}
