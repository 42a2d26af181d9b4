# Workload b: builds a 100,000-element list with append, then sums it with a for loop.
items = []
i = 0
while i < 100000:
    items.append(i % 1000)
    i += 1
result = 0
for x in items:
    result += x
print(result)
