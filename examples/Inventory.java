package examples.store;

import java.util.ArrayList;
import java.util.List;

/**
 * Keeps the items of a small shop.
 */
public class Inventory {
    private final List<Item> items = new ArrayList<>();
    private int capacity;
    protected String owner = "nobody";
    public static final int MAX_ITEMS = 100;

    public Inventory(int capacity) {
        this.capacity = capacity;
    }

    public boolean add(Item item) {
        if (items.size() >= capacity) {
            return false;
        }
        return items.add(item);
    }

    public int count() {
        return items.size();
    }

    public double totalValue(double taxRate,
                             boolean rounded) {
        double sum = 0;
        for (Item item : items) {
            sum += item.price;
        }
        sum = sum * (1 + taxRate);
        return rounded ? Math.round(sum) : sum;
    }

    static class Item {
        String name;
        double price;

        Item(String name, double price) {
            this.name = name;
            this.price = price;
        }
    }
}
