-- Workload b: builds a 100,000-element table by appending, then sums it with a for loop.
local items = {}
local i = 0
while i < 100000 do
  items[#items + 1] = i % 1000
  i = i + 1
end
local result = 0
for _, x in ipairs(items) do
  result = result + x
end
print(result)
