#if NETSTANDARD2_1_OR_GREATER
using System;
using System.Collections.Generic;
using System.Threading;
using System.Threading.Tasks;

namespace Harvlink
{
    /// <summary>The samples of a fleet for `await foreach`, where the runtime knows it.</summary>
    public sealed partial class Fleet : IAsyncEnumerable<FleetSample>
    {
        /// <summary>The samples as they come, until the fleet is stopped or disposed of, or the token is cancelled.</summary>
        public IAsyncEnumerator<FleetSample> GetAsyncEnumerator(CancellationToken cancellationToken = default(CancellationToken))
        {
            return new Enumerator(this, cancellationToken);
        }

        private sealed class Enumerator : IAsyncEnumerator<FleetSample>
        {
            private readonly Queue<FleetSample> ready = new Queue<FleetSample>();
            private readonly Fleet fleet;
            private readonly CancellationToken cancellation;
            private readonly int before;

            public Enumerator(Fleet fleet, CancellationToken cancellation)
            {
                this.fleet = fleet;
                this.cancellation = cancellation;
                before = Volatile.Read(ref fleet.stops);
            }

            public FleetSample Current { get; private set; }

            public ValueTask<bool> MoveNextAsync()
            {
                cancellation.ThrowIfCancellationRequested();
                if (ready.Count > 0)
                {
                    Current = ready.Dequeue();
                    return new ValueTask<bool>(true);
                }
                return new ValueTask<bool>(Task.Run(TakeNext));
            }

            public ValueTask DisposeAsync()
            {
                return default(ValueTask);
            }

            /// <summary>Waits on a thread of the pool, a period at a time.</summary>
            private bool TakeNext()
            {
                while (before == Volatile.Read(ref fleet.stops))
                {
                    cancellation.ThrowIfCancellationRequested();
                    foreach (FleetSample sample in fleet.TakeUnlessStopped(before))
                    {
                        ready.Enqueue(sample);
                    }
                    if (ready.Count > 0)
                    {
                        Current = ready.Dequeue();
                        return true;
                    }
                }
                return false;
            }
        }
    }
}
#endif
