-- Workload a: a while loop of 1,000,000 iterations of integer arithmetic with a compound assignment.
local i = 0
local result = 0
while i < 1000000 do
  result = result + i * 3 % 7
  i = i + 1
end
print(result)
